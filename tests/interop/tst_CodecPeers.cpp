// The codec against two others, xz's and the npm package's: what one has written the other reads, text for
// text, and what one refuses the other refuses too, but for what is written down here.

#include "interop/support/Main.h"
#include "support/LzmaBlocks.h"

#include <CalyxClient/Lzma>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {

using LzmaBlocks::HEADER;
using LzmaBlocks::withSize;

constexpr int TEXTS = 3000;
constexpr int SIZE_OFFSET = 5;
constexpr quint64 UNKNOWN_SIZE = ~quint64(0);
const QString NODE = QStringLiteral("node");
const QString XZ = QStringLiteral("xz");

using Random = std::mt19937; // gives the same everywhere, as the distributions do not

int upTo(Random& random, int limit)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit + 1));
}

// Mostly as short as an answer, some like a question, and a few like a picture.
int sizeOf(int number, Random& random)
{
    if (number % 1000 == 999)
        return upTo(random, 100000);
    return upTo(random, number % 100 == 99 ? 10000 : 200);
}

QByteArray textOf(int number)
{
    static const char* const words[] = {"\"pollId\":", "{\"", "\"}", "answer", "Ä",          "ж",  "€", "漢",
                                        "😀",           "\\n", "\n",  "    ",   "0123456789", "%1", "[", "]"};
    Random random(static_cast<unsigned>(number));
    const int size = sizeOf(number, random);
    QByteArray text("");
    while (text.size() < size) {
        switch (number % 3) {
        case 0:
            text += words[random() % std::size(words)];
            break;
        case 1: // does not compress
            text += static_cast<char>('!' + upTo(random, '~' - '!'));
            break;
        default: // does, and how
            text += QByteArray(1 + upTo(random, 300), static_cast<char>('a' + upTo(random, 25)));
            break;
        }
    }
    return text;
}

QByteArray compressed(const QByteArray& text)
{
    return LzmaBlocks::blockOf(QString::fromUtf8(text));
}

// Null where it is refused. It ends at the first NUL, if that comes from damage.
QByteArray decompressed(const QByteArray& block)
{
    unsigned char* text = nullptr;
    if (!Lzma::decompress(reinterpret_cast<const unsigned char*>(block.constData()),
                          static_cast<size_t>(block.size()), &text))
        return QByteArray();
    const QByteArray result(reinterpret_cast<const char*>(text));
    std::free(text);
    return result;
}

// An empty text is not the same as a refused block.
bool isSame(const QByteArray& left, const QByteArray& right)
{
    return left == right && left.isNull() == right.isNull();
}

QByteArray upToNul(const QByteArray& bytes)
{
    return bytes.isNull() ? bytes : QByteArray(bytes.constData());
}

// One byte of the stream changed, or the stream cut off, or something behind it.
QByteArray damaged(const QByteArray& block, int number)
{
    Random random(static_cast<unsigned>(number));
    const int position = HEADER + upTo(random, block.size() - HEADER - 1);
    QByteArray result = block;
    switch (number % 4) {
    case 0:
        return result.left(position);
    case 1:
        return result.append(QByteArray::number(number));
    default:
        result[position] = static_cast<char>(result.at(position) ^ (1 << upTo(random, 7)));
        return result;
    }
}

// A folder of numbered files.
class Files
{
public:
    bool write(int number, const char* suffix, const QByteArray& bytes) const
    {
        QFile file(path(number, suffix));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }
    // Null where there is none.
    QByteArray read(int number, const char* suffix) const
    {
        QFile file(path(number, suffix));
        if (!file.open(QIODevice::ReadOnly))
            return QByteArray();
        const QByteArray bytes = file.readAll();
        return bytes.isNull() ? QByteArray("") : bytes;
    }
    // The package's codec, in one process.
    bool npm(const char* operation) const
    {
        return run(NODE,
                   {QStringLiteral(INTEROP_SOURCE_DIR "/peers/lzma-files.js"), QLatin1String(operation),
                    m_folder.path()},
                   QByteArray()) == 0;
    }
    // xz on the files that end with suffix, in one process; the status tells whether it has refused some.
    int xz(const char* operation, const char* suffix) const
    {
        const QStringList names = QDir(m_folder.path()).entryList({QLatin1Char('*') + QLatin1String(suffix)});
        return run(XZ,
                   {QStringLiteral("--format=lzma"), QStringLiteral("-qq"), QStringLiteral("-0"),
                    QLatin1String(operation), QStringLiteral("--files0")},
                   names.join(QChar(0)).toUtf8() + '\0');
    }

private:
    QString path(int number, const char* suffix) const
    {
        return m_folder.filePath(QString::number(number) + QLatin1String(suffix));
    }
    int run(const QString& program, const QStringList& arguments, const QByteArray& input) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(program, arguments);
        process.write(input);
        process.closeWriteChannel();
        return process.waitForFinished(570000) ? process.exitCode() : -1;
    }

    QTemporaryDir m_folder;
};

} // namespace

class tst_CodecPeers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (int i = 0; i < TEXTS; ++i)
            m_texts.append(textOf(i));
        QVERIFY(std::any_of(m_texts.begin(), m_texts.end(), [](const auto& text) { return text.isEmpty(); }));
        QVERIFY(std::any_of(m_texts.begin(), m_texts.end(),
                            [](const auto& text) { return text.size() > 90000; }));
    }

    void othersReadOurBlocks()
    {
        const Files files;
        for (int i = 0; i < TEXTS; ++i)
            QVERIFY(files.write(i, ".lzma", compressed(m_texts.at(i))));
        QVERIFY(files.npm("decompress"));
        QCOMPARE(files.xz("--decompress", ".lzma"), 0); // takes the blocks away
        for (int i = 0; i < TEXTS; ++i) {
            QVERIFY2(isSame(files.read(i, ""), m_texts.at(i)), qPrintable(QString::number(i)));
            QVERIFY2(isSame(files.read(i, ".out"), m_texts.at(i)), qPrintable(QString::number(i)));
        }
    }

    // xz never writes the size, which our blocks must have.
    void weReadThoseOfOthers()
    {
        const Files files;
        for (int i = 0; i < TEXTS; ++i)
            QVERIFY(files.write(i, ".txt", m_texts.at(i)));
        QVERIFY(files.npm("compress"));
        QCOMPARE(files.xz("--compress", ".txt"), 0);
        for (int i = 0; i < TEXTS; ++i) {
            const QByteArray block = files.read(i, ".txt.lzma");
            QCOMPARE(block.mid(SIZE_OFFSET, HEADER - SIZE_OFFSET), QByteArray(8, '\xff'));
            QVERIFY(decompressed(block).isNull());
            for (const QByteArray& theirs :
                 {withSize(block, quint64(m_texts.at(i).size())), files.read(i, ".lzma")})
                QVERIFY2(isSame(decompressed(theirs), m_texts.at(i)), qPrintable(QString::number(i)));
        }
    }

    void damagedBlocksGiveTheSameAsWithXz()
    {
        const Files files;
        const Files withoutSize;
        QMap<int, QByteArray> endedEarly;
        QList<QByteArray> blocks;
        for (int i = 0; i < TEXTS; ++i) {
            blocks.append(damaged(compressed(m_texts.at(i)), i));
            QVERIFY(files.write(i, ".lzma", blocks.at(i)));
        }
        QVERIFY(files.xz("--decompress", ".lzma") > 0);
        int refused = 0;
        for (int i = 0; i < TEXTS; ++i) {
            const QByteArray theirs = upToNul(files.read(i, ""));
            const QByteArray ours = decompressed(blocks.at(i));
            refused += ours.isNull() ? 1 : 0;
            if (isSame(ours, theirs))
                continue;
            // xz reads on behind the end, and wants the size to be right where there is an end marker as
            // well. We do neither: a text that is complete is.
            QVERIFY2(theirs.isNull(), qPrintable(QString::number(i)));
            if (isSame(ours, m_texts.at(i)))
                continue;
            QVERIFY2(ours.size() < m_texts.at(i).size(), qPrintable(QString::number(i)));
            endedEarly.insert(i, ours);
            QVERIFY(withoutSize.write(i, ".lzma", withSize(blocks.at(i), UNKNOWN_SIZE)));
        }
        // A damage that looks like the end marker: without the size, xz sees the same text.
        QCOMPARE(withoutSize.xz("--decompress", ".lzma"), 0);
        for (auto text = endedEarly.cbegin(); text != endedEarly.cend(); ++text)
            QCOMPARE(upToNul(withoutSize.read(text.key(), "")), text.value());
        QVERIFY(refused > TEXTS / 2);
        QVERIFY(endedEarly.size() < TEXTS / 100);
    }

private:
    QList<QByteArray> m_texts;
};

INTEROP_MAIN(tst_CodecPeers)
#include "tst_CodecPeers.moc"
