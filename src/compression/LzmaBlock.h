#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdlib>
#include <memory>

/// Compressed blocks as bytes. What Lzma offers as texts and lists is made of these.
namespace LzmaBlock {

struct Free
{
    void operator()(unsigned char* bytes) const { std::free(bytes); }
};

/// Bytes on the process heap.
struct Buffer
{
    std::unique_ptr<unsigned char, Free> bytes;
    size_t size = 0;
};

/// The largest number of bytes that a block is decoded to.
constexpr size_t largestText = size_t(256) * 1024 * 1024;

/// Compresses \p size bytes into a block. The encoder is kept for the thread's next block.
bool encode(const unsigned char* source, size_t size, Buffer* block);

/// Compresses text in UTF-8 into the base64 of a block. False, with \p base64 as it was, when the encoder
/// fails.
bool encode64(const QByteArray& utf8, QString* base64);

/// Decodes a block. Behind the bytes there is room for one more.
bool decode(const unsigned char* block, size_t size, Buffer* text);

/// Decodes base64 of a block into what its text is in UTF-8: up to the first NUL, invalid sequences replaced.
bool decode64(const QString& base64, QByteArray* utf8);

} // namespace LzmaBlock
