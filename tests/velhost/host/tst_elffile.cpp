#include <host/elffile.h>

#include <QDataStream>
#include <QTemporaryFile>
#include <QTest>

// The header of programs and libraries, written byte by byte.

namespace {

struct Fields
{
    bool is64Bit = true;
    bool isBigEndian = false;
    quint16 machine = 62;
    quint32 flags = 0;
};

void writeWide(QDataStream *stream, quint64 value, bool is64Bit)
{
    if (is64Bit)
        *stream << value;
    else
        *stream << static_cast<quint32>(value);
}

QByteArray headerBytes(Fields fields)
{
    QByteArray bytes("\x7f"
                     "ELF");
    bytes.append(fields.is64Bit ? '\2' : '\1');
    bytes.append(fields.isBigEndian ? '\2' : '\1');
    bytes.append(QByteArray(10, '\0'));
    QDataStream stream(&bytes, QIODevice::WriteOnly | QIODevice::Append);
    stream.setByteOrder(fields.isBigEndian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream << quint16(3) << fields.machine << quint32(1);
    writeWide(&stream, 0x1111, fields.is64Bit);
    writeWide(&stream, 0x2222, fields.is64Bit);
    writeWide(&stream, 0x1000, fields.is64Bit);
    stream << fields.flags << quint16(0x3333) << quint16(0x4444) << quint16(0x5555) << quint16(64)
           << quint16(10) << quint16(0x6666);
    return bytes;
}

std::optional<ElfHeader> parsed(const QByteArray &bytes)
{
    QTemporaryFile file;
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush())
        qFatal("%s", qPrintable(file.errorString()));
    return readElfHeader(file.fileName());
}

const Fields hardFloat{false, false, 40, 0x05000400};
const Fields softFloat{false, false, 40, 0x05000200};
const Fields untoldFloat{false, false, 40, 0x05000000};

} // namespace

Q_DECLARE_METATYPE(Fields)

class tst_ElfFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void processors_data();
    void processors();
    void otherFiles_data();
    void otherFiles();
    void truncatedHeader();
    void sameProcessor_data();
    void sameProcessor();
};

void tst_ElfFile::processors_data()
{
    QTest::addColumn<Fields>("fields");
    QTest::addColumn<QString>("text");

    const auto row = [](Fields fields, const char *text) {
        QTest::newRow(text) << fields << QString::fromLatin1(text);
    };
    row({}, "x86_64 (64 bit, little endian)");
    row({false, false, 3, 0}, "i386 (32 bit, little endian)");
    row({true, false, 183, 0}, "arm64 (64 bit, little endian)");
    row({false, true, 8, 0}, "mips (32 bit, big endian)");
    row({true, true, 21, 0}, "power64 (64 bit, big endian)");
    row({true, false, 258, 0}, "processor 258 (64 bit, little endian)");
    row(hardFloat, "arm (32 bit, little endian, hard float)");
    row(softFloat, "arm (32 bit, little endian, soft float)");
    row(untoldFloat, "arm (32 bit, little endian)");
    row({true, false, 243, 0x400}, "riscv (64 bit, little endian)");
}

void tst_ElfFile::processors()
{
    QFETCH(Fields, fields);
    QFETCH(QString, text);

    const std::optional<ElfHeader> header = parsed(headerBytes(fields));
    QVERIFY(header.has_value());
    QCOMPARE(processorText(*header), text);
}

void tst_ElfFile::otherFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a text") << QByteArray(
        "no library at all, but a text that is long enough.\n\n\n");
    QTest::newRow("one byte is another") << headerBytes({}).replace(3, 1, "G");
    QTest::newRow("zeros") << QByteArray(64, '\0');
}

void tst_ElfFile::otherFiles()
{
    QFETCH(QByteArray, bytes);

    QCOMPARE(parsed(bytes).has_value(), false);
}

// Of a longer header the rest is not needed.
void tst_ElfFile::truncatedHeader()
{
    for (const bool is64Bit : {false, true}) {
        Fields fields;
        fields.is64Bit = is64Bit;
        const QByteArray whole = headerBytes(fields);
        QCOMPARE(whole.size(), is64Bit ? 64 : 52);
        for (int size = 0; size <= whole.size(); ++size)
            QCOMPARE(parsed(whole.left(size)).has_value(), size >= 52);
    }
}

void tst_ElfFile::sameProcessor_data()
{
    QTest::addColumn<Fields>("one");
    QTest::addColumn<Fields>("other");
    QTest::addColumn<bool>("same");

    QTest::newRow("equal") << Fields{} << Fields{} << true;
    QTest::newRow("machine") << Fields{} << Fields{true, false, 183, 0} << false;
    QTest::newRow("class") << Fields{} << Fields{false, false, 62, 0} << false;
    QTest::newRow("byte order") << Fields{} << Fields{true, true, 62, 0} << false;
    QTest::newRow("hard and soft float") << hardFloat << softFloat << false;
    QTest::newRow("hard and untold float") << hardFloat << untoldFloat << true;
    QTest::newRow("untold and soft float") << untoldFloat << softFloat << true;
    QTest::newRow("flags of another processor")
        << Fields{true, false, 62, 0x400} << Fields{true, false, 62, 0x200} << true;
}

void tst_ElfFile::sameProcessor()
{
    QFETCH(Fields, one);
    QFETCH(Fields, other);
    QFETCH(bool, same);

    const std::optional<ElfHeader> first = parsed(headerBytes(one));
    const std::optional<ElfHeader> second = parsed(headerBytes(other));
    QVERIFY(first && second);
    QCOMPARE(haveSameProcessor(*first, *second), same);
    QCOMPARE(haveSameProcessor(*second, *first), same);
}

QTEST_GUILESS_MAIN(tst_ElfFile)
#include "tst_elffile.moc"
