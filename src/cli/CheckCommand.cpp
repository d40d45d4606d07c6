#include "cli/CheckCommand.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

#include "cli/CliContext.h"
#include "cli/CliOutput.h"
#include "cli/CliQuestions.h"
#include "cli/CommandLine.h"
#include "cli/ExitCodes.h"
#include "cli/JsonFormat.h"
#include "cli/ListSources.h"
#include "cli/RowReport.h"
#include "list/Columns.h"
#include "list/ListGrade.h"
#include "list/MainModel.h"
#include "list/StatusBoxes.h"
#include "platform/InterruptWatcher.h"

namespace {

int statusOfGrade(const QString& status) {
    const Grade grade = GradeOf(status);
    if (grade == Grade::Green) {
        return ExitCode::kOk;
    }
    if (grade == Grade::Orange) {
        return ExitCode::kOrange;
    }
    return ExitCode::kRed;
}

QString explanationOf(const MainModel& model) {
    const std::optional<ListStatusExplanation> explanation = ExplainListStatus(model);
    return explanation ? explanation->text : QString();
}

void printJson(CliContext& cli, const MainModel& model) {
    const ItemList& items = model.items;
    QJsonArray rows;
    QJsonArray differing;
    for (int position = 1; position <= items.count(); ++position) {
        const RowCheck check = items.rowCheck(position);
        QJsonObject row{{QStringLiteral("position"), position},
                        {QStringLiteral("cells"), CellsObject(items, position)},
                        {QStringLiteral("mark"), MarkName(check)},
                        {QStringLiteral("reason"), check.reason}};
        const std::shared_ptr<const JoinTraits> traits = items.joinTraits(position);
        row.insert(QStringLiteral("check"),
                   traits ? QJsonValue(TraitsObject(*traits)) : QJsonValue());
        rows.append(row);
        if (check.mark != RowCheck::Mark::None) {
            differing.append(position);
        }
    }
    const ListState& state = model.state;
    cli.output.result(JsonText(QJsonObject{{QStringLiteral("list_type"), state.listType()},
                                           {QStringLiteral("grade"), state.listStatus()},
                                           {QStringLiteral("status_text"), explanationOf(model)},
                                           {QStringLiteral("count"), items.count()},
                                           {QStringLiteral("size"), state.sizeCaption()},
                                           {QStringLiteral("duration"), state.durationCaption()},
                                           {QStringLiteral("rows"), rows},
                                           {QStringLiteral("differing_rows"), differing}}));
}

void printText(CliContext& cli, const MainModel& model) {
    const ItemList& items = model.items;
    const ListState& state = model.state;
    const QLocale locale;
    QString text = QStringLiteral("List: ") + state.listType() + QStringLiteral(", ") +
                   locale.toString(items.count()) +
                   (items.count() == 1 ? QStringLiteral(" file, ") : QStringLiteral(" files, ")) +
                   state.sizeCaption() + QStringLiteral(", ") + state.durationCaption() + u'\n';
    text += QStringLiteral("Grade: ") + state.listStatus() + QStringLiteral("\n\n");
    text += explanationOf(model);
    for (const int position : items.markedRows()) {
        const RowCheck check = items.rowCheck(position);
        text += QStringLiteral("\nRow ") + locale.toString(position) + QStringLiteral(" (") +
                items.cell(position, SharedCell::Filename) + QStringLiteral("): ") +
                (check.mark == RowCheck::Mark::Red ? QStringLiteral("Red: ")
                                                   : QStringLiteral("Orange: ")) +
                check.reason;
    }
    cli.output.result(text);
}

}  // namespace

int RunCheck(CliContext& cli) {
    MainModel model(cli.questions, cli.clipboard);
    if (const std::optional<int> status = MakeCommandList(cli, model)) {
        return *status;
    }
    cli.options.json ? printJson(cli, model) : printText(cli, model);
    return statusOfGrade(model.state.listStatus());
}
