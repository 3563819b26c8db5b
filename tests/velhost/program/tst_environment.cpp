#include "programrun.h"
#include "text.h"
#include "writefile.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

// How the built program deals with faults of its environment: plug-in, plant file, output,
// arguments.

namespace {

const QString program = QStringLiteral(VELHOST_FILE);
const QString scriptedPlugin = QStringLiteral(SCRIPTED_PLUGIN_FILE);
const QString objectPlugin = QStringLiteral(OBJECT_PLUGIN_FILE);
const QString silentPlugin = QStringLiteral(SILENT_PLUGIN_FILE);

/// One device with one item, for which the plug-in sets no time stamp.
const char *const smallPlant
    = R"({"devices": [{"id": 1, "name": "Press", "ip": "", "items": [{"name": "A"}]}]})";

/// The environment of a copied program, which needs the folder of the host's library.
QProcessEnvironment environmentOfCopy()
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(text("LD_LIBRARY_PATH"), text(VEL_LIBRARY_FOLDER));
    return environment;
}

} // namespace

class tst_Environment : public QObject
{
    Q_OBJECT

    QString inFolder(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;

private Q_SLOTS:
    void initTestCase();
    void plantFaults_data();
    void plantFaults();
    void defaultPlugin_data();
    void defaultPlugin();
    void brokenDefaultPlugin();
    void noDefaultPlugin();
    void stampsWithoutPlugin();
    void keepsInterval();
    void fullOutput();
    void argumentNotUtf8();
    void version();
};

void tst_Environment::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QVERIFY(writeFile(inFolder(text("plant.json")), smallPlant));
}

void tst_Environment::plantFaults_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QByteArray>("plant");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("errors");

    QTest::newRow("faults are found before the plug-in is looked for")
        << text("none.so") << QByteArray(R"({"device": []})") << 2
        << text("velhost: fault.json: device: unknown key; known here: $schema, networkInterfaces, "
                "devices\n"
                "velhost: fault.json: devices: missing; expected a list\n");
    QTest::newRow("no JSON")
        << text("none.so") << QByteArray("{\n]") << 2
        << text("velhost: fault.json:2:2: not valid JSON: unterminated object\n");
    QTest::newRow("control character")
        << text("none.so") << QByteArray(R"({"devices": [], "\u001b[31m": 1})") << 2
        << text("velhost: fault.json: \\x1b[31m: unknown key; known here: $schema, "
                "networkInterfaces, "
                "devices\n");
    QTest::newRow("parameters are judged by the plug-in's columns")
        << scriptedPlugin << QByteArray(R"({"devices": [{"id": 1, "name": "Press", "ip": "",
            "parameters": {"prot": "1", "script": "init-false"},
            "items": [{"name": "A"}, {"name": "B", "parameters": {"memory_type": "Wrod"}}]}]})")
        << 2
        << text("velhost: fault.json: devices[0].parameters.prot: the plug-in declares no such "
                "device "
                "parameter; it declares: port, script, time_stamp\n"
                "velhost: fault.json: devices[0].items[1].parameters.memory_type: \"Wrod\" is not "
                "offered; use one of: \"Bit device\" (0), \"Word device\" (1)\n");
    QTest::newRow("plug-in that does not register")
        << silentPlugin << QByteArray(smallPlant) << 3
        << text("velhost: the plug-in %1 did not register during init()\n").arg(silentPlugin);
}

void tst_Environment::plantFaults()
{
    QFETCH(QString, plugin);
    QFETCH(QByteArray, plant);
    QFETCH(int, exitCode);
    QFETCH(QString, errors);

    QVERIFY(writeFile(inFolder(text("fault.json")), plant));
    const ProgramRun run = runProgram(
        program, {text("read"), text("--plugin"), plugin, text("--plant"), text("fault.json")},
        m_folder.path());
    QCOMPARE(run.errors, errors);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, exitCode);
}

void tst_Environment::defaultPlugin_data()
{
    QTest::addColumn<QStringList>("places");
    QTest::addColumn<QString>("loaded");

    const QString beside = text("bin/libkeyence.so");
    const QString lib = text("lib/libkeyence.so");
    const QString installed = text(INSTALLED_PLUGIN_FILE);
    const QString qtFolder = text("qt/libkeyence.so");
    QTest::newRow("beside the program goes first")
        << QStringList{beside, lib, installed, qtFolder} << beside;
    QTest::newRow("then ../lib") << QStringList{lib, installed, qtFolder} << lib;
    QTest::newRow("then where it is installed") << QStringList{installed, qtFolder} << installed;
    QTest::newRow("then Qt's plug-in folders") << QStringList{qtFolder} << qtFolder;
}

/// Copies the program, so that only the files of the row are next to it.
void tst_Environment::defaultPlugin()
{
    QFETCH(QStringList, places);
    QFETCH(QString, loaded);

    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(text("bin")));
    const QString copy = folder.filePath(text("bin/velhost"));
    QVERIFY(QFile::copy(program, copy));
    for (const QString &place : places) {
        QVERIFY(QDir(folder.path()).mkpath(QFileInfo(place).path()));
        QVERIFY(QFile::copy(scriptedPlugin, folder.filePath(place)));
    }

    QProcessEnvironment environment = environmentOfCopy();
    environment.insert(text("QT_PLUGIN_PATH"), folder.filePath(text("qt")));
    const ProgramRun run = runProgram(copy, {text("columns")}, m_folder.path(), environment);
    QCOMPARE(run.errors, QString());
    const QString fileLine = text("File        ") + folder.filePath(loaded);
    QCOMPARE(run.output.split(u'\n').value(4), fileLine);
    QCOMPARE(run.exitCode, 0);
}

void tst_Environment::brokenDefaultPlugin()
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath(text("velhost"));
    const QString beside = folder.filePath(text("libkeyence.so"));
    QVERIFY(QFile::copy(program, copy));
    QVERIFY(QFile::copy(objectPlugin, beside));
    const ProgramRun run
        = runProgram(copy, {text("columns")}, m_folder.path(), environmentOfCopy());
    QCOMPARE(run.errors,
             text("velhost: cannot load the plug-in %1: its class \"ObjectPlugin\" is not "
                  "a VELInterface; derive it from VELInterface and name that in Q_INTERFACES\n")
                 .arg(beside));
    QCOMPARE(run.exitCode, 3);
}

void tst_Environment::noDefaultPlugin()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(text("bin")));
    const QString copy = folder.filePath(text("bin/velhost"));
    QVERIFY(QFile::copy(program, copy));
    QProcessEnvironment environment = environmentOfCopy();
    environment.insert(text("QT_PLUGIN_PATH"), folder.path());
    const ProgramRun run = runProgram(copy, {text("columns")}, m_folder.path(), environment);
    const QString start
        = text("velhost: there is no plug-in at %1/bin/libkeyence.so, "
               "%1/lib/libkeyence.so, %1/" INSTALLED_PLUGIN_FILE ", %1/libkeyence.so, ")
              .arg(folder.path());
    QCOMPARE(run.errors.left(start.size()), start);
    const QString end = text("/libkeyence.so; name its file with --plugin\n");
    QCOMPARE(run.errors.right(end.size()), end);
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 3);
}

void tst_Environment::stampsWithoutPlugin()
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const ProgramRun run
        = runProgram(program,
                     {text("read"), text("--plugin"), scriptedPlugin, text("--plant"),
                      text("plant.json"), text("--format"), text("json")},
                     m_folder.path());
    const QDateTime after = QDateTime::currentDateTimeUtc();
    QCOMPARE(run.errors, QString());
    const QRegularExpression line(text(
        R"re(^\{"type":"value","cycle":1,"time":"([-0-9]{10}T[0-9:]{8}\.[0-9]{3}[+-][0-9:]{5})",)re"
        R"re("device":"Press","item":"A","value":"0","error":""\}\n$)re"));
    const QRegularExpressionMatch match = line.match(run.output);
    QVERIFY2(match.hasMatch(), qPrintable(run.output));
    const QDateTime time = QDateTime::fromString(match.captured(1), Qt::ISODateWithMs);
    QVERIFY(before <= time);
    QVERIFY(time <= after);
    QCOMPARE(run.exitCode, 0);
}

void tst_Environment::keepsInterval()
{
    QElapsedTimer timer;
    timer.start();
    const ProgramRun run = runProgram(program,
                                      {text("read"), text("--plugin"), scriptedPlugin,
                                       text("--plant"), text("plant.json"), text("--cycles"),
                                       text("3"), text("--interval"), text("150")},
                                      m_folder.path());
    QVERIFY(timer.elapsed() >= 300);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.output.count(u'\n'), 8);
    QCOMPARE(run.exitCode, 0);
}

void tst_Environment::fullOutput()
{
    QProcess process;
    process.setStandardOutputFile(text("/dev/full"));
    process.start(program, {text("columns"), text("--plugin"), scriptedPlugin});
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
             text("velhost: standard output could not be written\n"));
    QCOMPARE(process.exitCode(), 1);
}

/// The shell passes a byte that QProcess would encode.
void tst_Environment::argumentNotUtf8()
{
    const ProgramRun run = runProgram(
        text("/bin/sh"),
        {text("-c"), text("\"$0\" write --plant plant.json \"Press/A=$(printf '\\344')\""),
         program},
        m_folder.path());
    QCOMPARE(run.errors, text("velhost: an argument is not valid UTF-8\n"));
    QCOMPARE(run.output, QString());
    QCOMPARE(run.exitCode, 2);
}

void tst_Environment::version()
{
    const ProgramRun run = runProgram(program, {text("--version")}, m_folder.path());
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.output, text("velhost " PROJECT_VERSION "\n"));
    QCOMPARE(run.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_Environment)
#include "tst_environment.moc"
