#include <gtest/gtest.h>

#include "cli/CliOutput.h"
#include "cli/CliQuestions.h"
#include "cli/CommandLine.h"
#include "cli/JoinProgressReport.h"
#include "join/JoinWizardState.h"
#include "platform/Questions.h"

namespace {
ParsedCommandLine parse(const QStringList& arguments) {
    return ParseCommandLine(QStringList{QStringLiteral("velmora-cli")} + arguments);
}
}  // namespace

TEST(CliCommandLine, JoinWithOutputAndSources_IsRead) {
    const ParsedCommandLine parsed =
        parse({"join", "--overwrite", "-o", "out.mp3", "--progress=lines", "a.mp3", "b"});
    ASSERT_EQ(parsed.error, QString());
    EXPECT_EQ(parsed.options.command, CliCommand::Join);
    EXPECT_EQ(parsed.options.output, QStringLiteral("out.mp3"));
    EXPECT_TRUE(parsed.options.overwrite);
    EXPECT_EQ(parsed.options.progress, ProgressForm::Lines);
    EXPECT_EQ(parsed.options.paths, (QStringList{"a.mp3", "b"}));
}

TEST(CliCommandLine, OptionsBeforeTheCommandAndAfterIt_AreBothTaken) {
    const ParsedCommandLine parsed =
        parse({"--quiet", "check", "--json", "--type", "MPEG", "--debug", "x.vlr"});
    ASSERT_EQ(parsed.error, QString());
    EXPECT_TRUE(parsed.options.quiet);
    EXPECT_TRUE(parsed.options.debug);
    EXPECT_TRUE(parsed.options.json);
    EXPECT_EQ(parsed.options.listType, QStringLiteral("MPEG"));
}

TEST(CliCommandLine, DoubleDash_EndsTheOptions) {
    const ParsedCommandLine parsed = parse({"info", "--", "--json"});
    ASSERT_EQ(parsed.error, QString());
    EXPECT_FALSE(parsed.options.json);
    EXPECT_EQ(parsed.options.paths, QStringList{"--json"});
}

TEST(CliCommandLine, BadCommandLines_SayWhy) {
    EXPECT_NE(parse({}).error, QString());
    EXPECT_NE(parse({"merge", "a.mp3"}).error, QString());
    EXPECT_NE(parse({"join", "a.mp3", "b.mp3"}).error, QString());  // no -o
    EXPECT_NE(parse({"join", "-o"}).error, QString());
    EXPECT_NE(parse({"join", "-o", "x", "--json", "a"}).error, QString());
    EXPECT_NE(parse({"check"}).error, QString());
    EXPECT_NE(parse({"check", "--type", "wav", "a"}).error, QString());
    EXPECT_NE(parse({"info", "--overwrite", "a"}).error, QString());
    EXPECT_NE(parse({"join", "--progress=fast", "-o", "x", "a"}).error, QString());
}

TEST(CliCommandLine, HelpAndVersion_NeedNoCommand) {
    EXPECT_EQ(parse({"--help"}).error, QString());
    EXPECT_TRUE(parse({"--help"}).options.help);
    EXPECT_TRUE(parse({"--version"}).options.version);
    const ParsedCommandLine joinHelp = parse({"join", "--help"});
    EXPECT_EQ(joinHelp.error, QString());
    EXPECT_EQ(joinHelp.options.command, CliCommand::Join);
    EXPECT_TRUE(CommandHelp(CliCommand::Join).contains(QStringLiteral("--no-tags")));
}

TEST(CliProgress, WholeJoin_CountsEachOperationHalf) {
    JoinWizardState state;
    state.setOperationTag(QStringLiteral("1"));
    state.setProgressMax(1000.0F);
    state.setProgressValue(500.0F);
    EXPECT_EQ(JoinProgressReport::PercentOf(state), 25);
    state.setOperationTag(QStringLiteral("2"));
    state.setProgressValue(0.0F);
    EXPECT_EQ(JoinProgressReport::PercentOf(state), 50);
    state.setProgressValue(999.0F);
    EXPECT_EQ(JoinProgressReport::PercentOf(state), 99);
    state.setOperationText(QStringLiteral("Finished!"));
    EXPECT_EQ(JoinProgressReport::PercentOf(state), 100);
}

TEST(CliQuestions, OutputThatExists_ReplacedOnlyWithOverwrite) {
    CliOutput output;
    output.setQuiet(true);
    CliQuestions questions(output);
    const QString title = QStringLiteral("File Already Exists!");
    const int style = Msg::YesNo + Msg::Exclamation;
    questions.prepareJoin(QStringLiteral("/tmp/out.mp3"), false);
    EXPECT_EQ(questions.msgBox(QStringLiteral("Would you like to overwrite?"), style, title),
              Msg::No);
    EXPECT_EQ(questions.errorCount(), 1);
    questions.prepareJoin(QStringLiteral("/tmp/out.mp3"), true);
    EXPECT_EQ(questions.msgBox(QStringLiteral("Would you like to overwrite?"), style, title),
              Msg::Yes);
    EXPECT_EQ(questions.errorCount(), 0);
}

TEST(CliQuestions, SaveDialog_AnswersTheOutputOnceThenCancels) {
    CliOutput output;
    CliQuestions questions(output);
    questions.prepareJoin(QStringLiteral("/music/out.mp3"), false);
    CommonDialog dialog;
    questions.showSave(dialog);
    EXPECT_EQ(dialog.fileName, QStringLiteral("/music/out.mp3"));
    EXPECT_EQ(dialog.fileTitle, QStringLiteral("out.mp3"));
    questions.showSave(dialog);
    EXPECT_EQ(dialog.fileName, QString());
}

TEST(CliQuestions, OtherQuestions_AreAnsweredNo) {
    CliOutput output;
    output.setQuiet(true);
    CliQuestions questions(output);
    EXPECT_EQ(questions.msgBox(QStringLiteral("You do not have enough free diskspace on drive "
                                              "/.\r\nWould you like to continue?"),
                               Msg::YesNo + Msg::Critical),
              Msg::No);
    EXPECT_EQ(questions.errorCount(), 1);
}
