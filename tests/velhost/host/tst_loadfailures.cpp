#include "programrun.h"
#include "text.h"
#include "writefile.h"

#include <host/elffile.h>

#include <vel/interfaceid.h>

#include <QFile>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>

#include <dlfcn.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

// The messages for plug-ins that cannot be loaded. Each file has one fault; most are copies of a
// good plug-in with a few bytes changed.

namespace {

const QString program = QStringLiteral(VELHOST_FILE);
const QString foreignPlugin = QStringLiteral(FOREIGN_PLUGIN_FILE);
const QString needingPlugin = QStringLiteral(NEEDING_PLUGIN_FILE);
const QString objectPlugin = QStringLiteral(OBJECT_PLUGIN_FILE);
const QString plainLibrary = QStringLiteral(PLAIN_LIBRARY_FILE);
const QString scriptedPlugin = QStringLiteral(SCRIPTED_PLUGIN_FILE);
const QString unresolvedPlugin = QStringLiteral(UNRESOLVED_PLUGIN_FILE);

// Offsets of header fields that are the same in 32-bit and 64-bit files.
constexpr int classOffset = 4;
constexpr int typeOffset = 16;
constexpr int machineOffset = 18;

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString processorOf(const QString &fileName)
{
    const std::optional<ElfHeader> header = readElfHeader(fileName);
    return header ? processorText(*header) : QString();
}

/// The 16-bit number at that offset of an ELF file of this machine, as text.
QString numberAt(const QByteArray &content, int offset)
{
    quint16 number = 0;
    std::memcpy(&number, content.constData() + offset, sizeof number);
    return QString::number(number);
}

/// The offset of the Qt version in the plug-in's metadata: major version, minor version, kind of
/// build.
int qtVersionOffset(const QByteArray &plugin)
{
    const QByteArray mark("QTMETADATA !");
    const int found = plugin.indexOf(mark);
    return found < 0 ? -1 : found + mark.size() + 1;
}

/// The file of Qt's core library with the name that the loader uses.
QString qtCoreFile()
{
    Dl_info info{};
    const bool found = dladdr(dlsym(RTLD_DEFAULT, "qVersion"), &info) != 0;
    return found ? QFile::decodeName(info.dli_fname) : QString();
}

/// A row whose loader text names the plug-in as %1.
void loaderRow(const char *name, const QString &plugin, const QString &explanation,
               const QString &loaderText)
{
    QTest::newRow(name) << plugin << explanation << loaderText.arg(plugin);
}

} // namespace

class tst_LoadFailures : public QObject
{
    Q_OBJECT

    QString inFolder(const char *name) const { return m_folder.filePath(text(name)); }
    /// Writes a copy of the plug-in with the bytes at the offset replaced.
    bool makeCopy(const char *name, int offset, const QByteArray &bytes) const;
    void fileRows() const;
    void linkRows() const;

    QTemporaryDir m_folder;
    QByteArray m_plugin;

private Q_SLOTS:
    void initTestCase();
    void explanations_data();
    void explanations();
    void qtVersions_data();
    void qtVersions();
    void unreadableFile();
    void missingLibraryIsTheOnlyFault();
};

bool tst_LoadFailures::makeCopy(const char *name, int offset, const QByteArray &bytes) const
{
    QByteArray copy = m_plugin;
    copy.replace(offset, bytes.size(), bytes);
    return copy != m_plugin && copy.size() == m_plugin.size() && writeFile(inFolder(name), copy);
}

void tst_LoadFailures::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_plugin = contentOf(scriptedPlugin);
    QVERIFY(m_plugin.startsWith("\x7f"
                                "ELF"));
    QVERIFY(writeFile(inFolder("text.so"), "no library at all, but a text\n"));
    QVERIFY(writeFile(inFolder("cut.so"), m_plugin.left(100)));
    QVERIFY(writeFile(inFolder("header.so"), m_plugin.left(60)));
    QCOMPARE(mkfifo(QFile::encodeName(inFolder("pipe.so")).constData(), 0600), 0);

    const bool isArm64 = m_plugin.mid(machineOffset, 2) == QByteArray("\xb7\0", 2);
    const QByteArray otherMachine = isArm64 ? QByteArray("\x3e\0", 2) : QByteArray("\xb7\0", 2);
    QVERIFY(makeCopy("machine.so", machineOffset, otherMachine));
    const QByteArray otherClass(1, m_plugin.at(classOffset) == '\1' ? '\2' : '\1');
    QVERIFY(makeCopy("class.so", classOffset, otherClass));
    QVERIFY(makeCopy("program.so", typeOffset, QByteArray("\2\0", 2)));

    const int qtOffset = qtVersionOffset(m_plugin);
    QVERIFY(qtOffset > 0);
    QCOMPARE(m_plugin.mid(qtOffset, 2), QByteArray("\x05\x0f"));
    const int neededQt = m_plugin.indexOf(QByteArray("\0Qt_5\0", 6));
    QVERIFY(neededQt > 0);
    QVERIFY(makeCopy("version.so", neededQt, QByteArray("\0Qt_9\0", 6)));
}

void tst_LoadFailures::explanations_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("explanation");
    QTest::addColumn<QString>("loaderText");

    QTest::newRow("no such file") << text("none.so")
                                  << text("there is no such file; look at the path, or build the "
                                          "plug-in")
                                  << QString();
    QTest::newRow("folder") << m_folder.path()
                            << text("it is a folder; name the plug-in's file in it") << QString();
    QTest::newRow("pipe") << inFolder("pipe.so")
                          << text("it is a pipe or a device and no file; name the plug-in's file")
                          << QString();
    QTest::newRow("other identifier")
        << foreignPlugin
        << text("its interface identifier is \"org.example.other.Interface/2.0\", this host asks "
                "for \"" VELInterface_iid "\"; build both with the same VEL_INTERFACE_PREFIX")
        << QString();
    QTest::newRow("other class") << objectPlugin
                                 << text("its class \"ObjectPlugin\" is not a VELInterface; derive "
                                         "it from VELInterface and name that in Q_INTERFACES")
                                 << QString();
    fileRows();
    linkRows();
}

void tst_LoadFailures::fileRows() const
{
    loaderRow("text file", inFolder("text.so"),
              text("it is no shared library; name the libkeyence.so that the build made"),
              text("'%1' is not an ELF object (file too small)"));
    loaderRow(
        "library", plainLibrary,
        text("it is a library, but no plug-in of Qt 5; name libkeyence.so itself, built with Qt "
             "5.15"),
        text("Failed to extract plugin meta data from '%1'"));
    const bool is64Bit = m_plugin.at(classOffset) == '\2';
    const QString otherProcessor = text("it is built for another processor: %1, this program for "
                                        "%2; take or build the one for this processor");
    loaderRow("other processor", inFolder("machine.so"),
              otherProcessor.arg(processorOf(inFolder("machine.so")), processorOf(program)),
              text("Cannot load library %1: (%1: cannot open shared object file: No such file or "
                   "directory)"));
    loaderRow("other width", inFolder("class.so"),
              otherProcessor.arg(processorOf(inFolder("class.so")), processorOf(program)),
              text("'%1' is an invalid ELF object (wrong cpu architecture)"));
    loaderRow("cut short in its header", inFolder("header.so"),
              text("it is cut short; copy it again and compare the sizes"),
              text("'%1' is not an ELF object (file too small)"));
    loaderRow(
        "cut short", inFolder("cut.so"),
        text("it is cut short; copy it again and compare the sizes"),
        text("'%1' is an invalid ELF object (announced %2 section(s), each %3 byte(s), exceed file "
             "size)")
            .arg(text("%1"), numberAt(m_plugin, is64Bit ? 60 : 48),
                 numberAt(m_plugin, is64Bit ? 58 : 46)));
}

void tst_LoadFailures::linkRows() const
{
    loaderRow(
        "missing library", needingPlugin,
        text("the library libneeded-library.so, which it or one of its libraries needs, is missing "
             "or there for another processor only; install it, or name its folder in "
             "LD_LIBRARY_PATH"),
        text("Cannot load library %1: (libneeded-library.so: cannot open shared object file: No "
             "such file or directory)"));
    loaderRow("library in another version", inFolder("version.so"),
              text("it needs version Qt_9 of %1, and the one here is another; build it against the "
                   "libraries of this machine")
                  .arg(qtCoreFile()),
              text("Cannot load library %2: (%1: version `Qt_9' not found (required by %2))")
                  .arg(qtCoreFile(), text("%1")));
    loaderRow(
        "missing symbol", unresolvedPlugin,
        text("no library here has the symbol missingFromEveryLibrary, which it needs; give it the "
             "libvel.so.1 and the Qt that it was built with"),
        text("Cannot load library %1: (%1: undefined symbol: missingFromEveryLibrary)"));
    loaderRow("something else", inFolder("program.so"),
              text("the system's loader refuses it; go by what it says below"),
              text("Cannot load library %1: (%1: cannot dynamically load executable)"));
}

void tst_LoadFailures::explanations()
{
    QFETCH(QString, plugin);
    QFETCH(QString, explanation);
    QFETCH(QString, loaderText);

    const ProgramRun run
        = runProgram(program, {text("columns"), text("--plugin"), plugin}, m_folder.path());
    QString errors = text("velhost: cannot load the plug-in %1: %2\n").arg(plugin, explanation);
    if (!loaderText.isEmpty())
        errors += text("velhost: the loader says: %1\n").arg(loaderText);
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 3);
}

void tst_LoadFailures::qtVersions_data()
{
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<bool>("loads");

    QTest::newRow("4.15") << 4 << 15 << false;
    QTest::newRow("5.0") << 5 << 0 << true;
    QTest::newRow("5.14") << 5 << 14 << true;
    QTest::newRow("5.15") << 5 << 15 << true;
    QTest::newRow("5.16") << 5 << 16 << false;
    QTest::newRow("6.15") << 6 << 15 << false;
}

void tst_LoadFailures::qtVersions()
{
    QFETCH(int, major);
    QFETCH(int, minor);
    QFETCH(bool, loads);

    const int offset = qtVersionOffset(m_plugin);
    QByteArray copy = m_plugin;
    copy[offset] = static_cast<char>(major);
    copy[offset + 1] = static_cast<char>(minor);
    const bool isDebug = (m_plugin.at(offset + 2) & 1) != 0;
    const QString fileName = inFolder("qt.so");
    QVERIFY(writeFile(fileName, copy));

    const ProgramRun run
        = runProgram(program, {text("columns"), text("--plugin"), fileName}, m_folder.path());
    const QString errors = text("velhost: cannot load the plug-in %1: it is built with Qt %2.%3, "
                                "and this program runs on Qt %4; build it with the Qt of this "
                                "machine\n"
                                "velhost: the loader says: The plugin '%1' uses incompatible Qt "
                                "library. (%2.%3.0) [%5]\n")
                               .arg(fileName, QString::number(major), QString::number(minor),
                                    text(qVersion()), text(isDebug ? "debug" : "release"));
    QCOMPARE(run.errors, loads ? QString() : errors);
    QCOMPARE(run.exitCode, loads ? 0 : 3);
}

// Root may read every file, so the right is dropped. Programs that this test starts later do not
// have it either.
void tst_LoadFailures::unreadableFile()
{
    const QString fileName = inFolder("secret.so");
    QVERIFY(writeFile(fileName, m_plugin));
    QVERIFY(QFile::setPermissions(fileName, {}));
    if (geteuid() == 0) {
        QCOMPARE(::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0), 0);
        QCOMPARE(::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0), 0);
    }
    const ProgramRun run
        = runProgram(program, {text("columns"), text("--plugin"), fileName}, m_folder.path());
    QCOMPARE(run.errors, text("velhost: cannot load the plug-in %1: it cannot be read: Permission "
                              "denied; let this user read it, with chmod a+r\n")
                             .arg(fileName));
    QCOMPARE(run.exitCode, 3);
}

// With the remedy the loader finds the library, so the next error is about the class.
void tst_LoadFailures::missingLibraryIsTheOnlyFault()
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(text("LD_LIBRARY_PATH"), text(NEEDED_LIBRARY_FOLDER));
    const ProgramRun run = runProgram(program, {text("columns"), text("--plugin"), needingPlugin},
                                      m_folder.path(), environment);
    QCOMPARE(run.errors,
             text("velhost: cannot load the plug-in %1: its class \"NeedingPlugin\" is not a "
                  "VELInterface; derive it from VELInterface and name that in Q_INTERFACES\n")
                 .arg(needingPlugin));
    QCOMPARE(run.exitCode, 3);
}

QTEST_GUILESS_MAIN(tst_LoadFailures)
#include "tst_loadfailures.moc"
