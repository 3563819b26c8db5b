#include <programrun.h>
#include <text.h>
#include <writefile.h>

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Tool
{
    QString program;
    QString manPage;
    QString completion;
};

Tool toolNamed(const QString &name)
{
    const QString program = name == text("kvsim") ? text(KVSIM_PROGRAM) : text(VELHOST_FILE);
    return {program, text(MAN_FOLDER "/") + name + text(".1"),
            text(TOOLS_FOLDER "/completion/") + name};
}

/// Two devices, whose names and items are completed.
const QByteArray plant
    = R"({"devices": [{"id": 1, "name": "Press", "ip": "10.0.0.1", "itemDefaults": {"data_type": "Short"},)"
      R"( "items": [{"name": "Strokes", "parameters": {"memory_address": "D1"}}]},)"
      R"( {"id": 2, "name": "Oven", "ip": "10.0.0.2", "itemDefaults": {"data_type": "Short"},)"
      R"( "items": [{"name": "Set point", "parameters": {"memory_address": "D2"}},)"
      R"( {"name": "Load", "parameters": {"memory_address": "D3"}}]}]})";

QString helpOf(const QString &name)
{
    return runProgram(toolNamed(name).program, {text("--help")}, {}).output;
}

/// The page as `man` shows it, without bold and underlining.
ProgramRun formatted(const QString &manPage)
{
    return runProgram(text(GROFF),
                      {text("-man"), text("-ww"), text("-Tutf8"), text("-P-cbou"), manPage}, {});
}

} // namespace

/// Help, manual page and completion of the programs.
class tst_Help : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void printsTheHelp_data();
    void printsTheHelp();
    void printsTheHelpOfACommand_data();
    void printsTheHelpOfACommand();
    void helpNamesNothingElse_data();
    void helpNamesNothingElse();
    void manPage_data();
    void manPage();
    void completes_data();
    void completes();
};

void tst_Help::printsTheHelp_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("velhost") << text("velhost") << QStringList{text("--help")};
    QTest::newRow("velhost, short") << text("velhost") << QStringList{text("-h")};
    QTest::newRow("velhost, as a command") << text("velhost") << QStringList{text("help")};
    QTest::newRow("kvsim") << text("kvsim") << QStringList{text("--help")};
    QTest::newRow("kvsim, short") << text("kvsim") << QStringList{text("-h")};
    QTest::newRow("kvsim ctl") << text("kvsim") << QStringList{text("ctl"), text("--help")};
}

void tst_Help::printsTheHelp()
{
    QFETCH(QString, name);
    QFETCH(QStringList, arguments);

    const Tool tool = toolNamed(name);
    const ProgramRun run = runProgram(tool.program, arguments, {});
    QCOMPARE(run.errors, QString());
    QVERIFY(run.output.startsWith(text("Usage: ") + name));
    QCOMPARE(run.output, helpOf(name));
    QCOMPARE(run.exitCode, 0);
    const QStringList lines = run.output.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        QVERIFY2(line.size() < 80, qPrintable(line));
}

void tst_Help::printsTheHelpOfACommand_data()
{
    QTest::addColumn<QString>("command");

    const QStringList lines = helpOf(text("velhost")).split(u'\n');
    const int begin = lines.indexOf(text("Commands:"));
    for (int i = begin + 1; i > 0 && !lines.at(i).isEmpty(); ++i) {
        const QString command = lines.at(i).mid(2).section(u' ', 0, 0);
        if (!command.isEmpty() && command != text("help"))
            QTest::newRow(qPrintable(command)) << command;
    }
}

/// `velhost COMMAND --help` and `velhost help COMMAND` name exactly the options that the command
/// takes: the general ones and its own section of the whole help.
void tst_Help::printsTheHelpOfACommand()
{
    QFETCH(QString, command);

    const QString program = toolNamed(text("velhost")).program;
    const ProgramRun run = runProgram(program, {command, text("--help")}, {});
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.output.startsWith(text("Usage: velhost ") + command));
    QCOMPARE(runProgram(program, {text("help"), command}, {}).output, run.output);
    const QString whole = helpOf(text("velhost"));
    const QStringList sections
        = whole.split(text("\n\n"))
              .filter(QRegularExpression(text("^Options of %1:").arg(command)));
    const QStringList entries = sections.value(0).split(u'\n').mid(1);
    for (const QString &entry : entries)
        QVERIFY2(run.output.contains(entry + u'\n'), qPrintable(entry));
    const QStringList lines = run.output.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        QVERIFY2(line.size() < 80, qPrintable(line));
}

void tst_Help::helpNamesNothingElse_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("option");

    for (const QString &name : {text("velhost"), text("kvsim")}) {
        const QString help = helpOf(name);
        const QRegularExpression pattern(text("^  (?:-[a-z], )?(--[a-z-]+)"),
                                         QRegularExpression::MultilineOption);
        QRegularExpressionMatchIterator matches = pattern.globalMatch(help);
        while (matches.hasNext()) {
            const QString option = matches.next().captured(1);
            QTest::newRow(qPrintable(name + QLatin1Char(' ') + option)) << name << option;
        }
    }
}

/// Only the option that does not exist is reported, whether the other one takes a value or not.
void tst_Help::helpNamesNothingElse()
{
    QFETCH(QString, name);
    QFETCH(QString, option);

    const ProgramRun run = runProgram(toolNamed(name).program,
                                      {option, text("value"), text("--no-such-option")}, {});
    QVERIFY2(run.errors.contains(text("Unknown option 'no-such-option'.")), qPrintable(run.errors));
    QCOMPARE(run.exitCode, 2);
}

void tst_Help::manPage_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("velhost") << text("velhost");
    QTest::newRow("kvsim") << text("kvsim");
}

void tst_Help::manPage()
{
    QFETCH(QString, name);

    const Tool tool = toolNamed(name);
    const ProgramRun run = formatted(tool.manPage);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exitCode, 0);
    const QStringList lines = run.output.split(QLatin1Char('\n'));
    for (const char *const section :
         {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "EXAMPLES"})
        QVERIFY2(lines.contains(text(section)), section);
    const QRegularExpression option(text("--[a-z-]+"));
    QRegularExpressionMatchIterator matches = option.globalMatch(helpOf(name));
    QVERIFY(matches.hasNext());
    while (matches.hasNext()) {
        const QString word = matches.next().captured();
        QVERIFY2(run.output.contains(word), qPrintable(word));
    }
    QVERIFY(lines.constLast().isEmpty());
    QVERIFY(run.output.contains(name + text(" " PROJECT_VERSION " ")));
}

void tst_Help::completes_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("words");

    QTest::newRow("commands") << text("velhost re") << text("read");
    QTest::newRow("one command of several options")
        << text("velhost --format json pl") << text("plan");
    QTest::newRow("options") << text("velhost read --on") << text("--only-changes");
    QTest::newRow("options of every command")
        << text("velhost --int") << text("--interface --interval");
    QTest::newRow("no option of another command") << text("velhost read --su") << QString();
    QTest::newRow("commands behind help") << text("velhost help ex") << text("explain");
    QTest::newRow("options of discover") << text("velhost discover --su") << text("--subnet");
    QTest::newRow("formats") << text("velhost read --format ") << text("csv json table");
    QTest::newRow("files behind a command") << text("velhost check pl") << text("plant.json");
    QTest::newRow("files behind --plant") << text("velhost --plant pl") << text("plant.json");
    const auto row = [](const char *line, const char *words) {
        QTest::newRow(line) << text(line) << text(words);
    };
    row("velhost read plant.json --",
        "--cycles --device --format --help --interval --ip --item "
        "--only-changes --plant --plugin --trace --trace-file --version");
    row("velhost explain --", "--format --help --version");
    row("velhost read plant.json --device ", "Oven Press");
    row("velhost read plant.json --device=O", "Oven");
    row("velhost --plant plant.json read --device P", "Press");
    row("velhost watch plant.json --item ", R"(Load Set\ point Strokes)");
    row("velhost watch plant.json --item Set\\ p", R"(Set\ point)");
    row("velhost watch plant.json --item 'Se", "Set point");
    row("velhost write plant.json ", R"(Oven/Load= Oven/Set\ point= Press/Strokes=)");
    row("velhost write plant.json Press/Strokes=1 O", R"(Oven/Load= Oven/Set\ point=)");
    row("velhost plan plant.json --write Oven/S", R"(Oven/Set\ point=)");
    row("velhost write pl", "plant.json");
    row("velhost read --device ", "");
    row("kvsim --fault sp", "split");
    row("kvsim --fault re", "refuse refuse-connect reset restart");
    row("kvsim ctl fault si", "silent");
    QTest::newRow("simulator's options") << text("kvsim --po") << text("--port");
    QTest::newRow("what controllers differ in")
        << text("kvsim --consecutive ") << text("addresses ports");
    QTest::newRow("simulator's files") << text("kvsim --config pl") << text("plant.json");
    QTest::newRow("ctl") << text("kvsim c") << text("ctl");
    QTest::newRow("commands of ctl") << text("kvsim ctl c") << text("clear counters");
    QTest::newRow("options of ctl") << text("kvsim ctl --p") << text("--port");
    QTest::newRow("nothing") << text("kvsim --nothing") << QString();
}

void tst_Help::completes()
{
    QFETCH(QString, line);
    QFETCH(QString, words);

    QTemporaryDir folder;
    QVERIFY(writeFile(folder.filePath(text("plant.json")), plant));
    const QString name = line.section(QLatin1Char(' '), 0, 0);
    const Tool tool = toolNamed(name);
    // Completes the line as bash does when the tab key is pressed.
    const QString script = text(R"(
        . "$5"
        . "$1"
        COMP_LINE=$2
        COMP_POINT=${#COMP_LINE}
        read -ra COMP_WORDS <<< "${COMP_LINE//\\ /$'\1'}"
        COMP_WORDS=("${COMP_WORDS[@]//$'\1'/\\ }")
        [[ $COMP_LINE != *' ' ]] || COMP_WORDS+=('')
        COMP_WORDS[0]=$3
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _$4 "$3" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
        printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd ' '
    )");
    const ProgramRun run = runProgram(text("bash"),
                                      {text("-c"), script, text("bash"), tool.completion, line,
                                       tool.program, name, text(BASH_COMPLETION)},
                                      folder.path());
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.output.trimmed(), words);
    QCOMPARE(run.exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_Help)
#include "tst_help.moc"
