#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QList>
#include <QString>
#include <QVariant>

#include <cstddef>

/// The text codec of event-bus payloads.
///
/// A compressed block is 5 LZMA property bytes, the uncompressed size in bytes as 64 bits little-endian, and
/// an LZMA stream that ends with an end marker. It travels as base64 text (the "64" operations) or as a list
/// of decimal byte values, "[93,0,0,...]". Text inside a block is UTF-8.
///
/// All operations return true on success and leave what their pointer arguments point to as it was on
/// failure; none logs. They may be called on any thread. They take time and memory in proportion to what they
/// read and write, never to what a block claims; a block of more than 256 MiB of decoded bytes fails.
class CALYXCLIENT_EXPORT Lzma
{
public:
    /// Compresses \p len bytes. \p dest receives a block that the caller releases with free().
    static bool compress(const unsigned char* src, size_t len, unsigned char** dest, size_t* destLen);
    /// Compresses \p text; \p out receives a list of decimal byte values.
    static bool compress(QString text, QString* out);
    /// Compresses \p text; \p out receives base64.
    static bool compress64(QString text, QString* out);

    /// Decodes a block of \p len bytes. \p dest receives the bytes with a NUL behind the last; the caller
    /// releases them with free().
    static bool decompress(const unsigned char* block, size_t len, unsigned char** dest);
    /// Decodes a block of \p len bytes; \p out receives the text, which ends at the first NUL.
    static bool decompress(unsigned char* block, size_t len, QString* out);
    /// Decodes a list of decimal byte values. The low 8 bits of a number count; a part that is no number, or
    /// none of 64 bits, counts as 0.
    static bool decompress(QString list, QString* out);
    /// Decodes a list of byte values, as a parsed JSON array holds them. The low 8 bits of each count.
    static bool decompress(QList<QVariant> bytes, QString* out);
    /// Decodes base64; characters that are not base64 are skipped.
    static bool decompress64(QString text, QString* out);
};
