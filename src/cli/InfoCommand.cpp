#include "cli/InfoCommand.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "cli/CliContext.h"
#include "cli/CliOutput.h"
#include "cli/CliQuestions.h"
#include "cli/CommandLine.h"
#include "cli/ExitCodes.h"
#include "cli/JsonFormat.h"
#include "cli/ListSources.h"
#include "cli/RowReport.h"
#include "list/Columns.h"
#include "list/FillListItem.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "platform/InterruptWatcher.h"

namespace {

QString quoted(const QString& path) {
    return u'\'' + path + u'\'';
}

// The file's type, or the reason it cannot be described.
QString typeOf(const CliContext& cli, const QString& path, QString& error) {
    const QFileInfo info(path);
    if (!info.exists()) {
        error = QStringLiteral("cannot read ") + quoted(path) +
                QStringLiteral(": no such file or folder");
        return {};
    }
    if (!info.isFile()) {
        error = quoted(path) + QStringLiteral(" is no file");
        return {};
    }
    if (!info.isReadable()) {
        error = QStringLiteral("cannot read ") + quoted(path);
        return {};
    }
    const QString type =
        cli.options.listType.isEmpty() ? ListTypeOfFileName(path) : cli.options.listType;
    if (type.isEmpty()) {
        error = QStringLiteral("cannot tell whether ") + quoted(path) +
                QStringLiteral(" is an MP3 or an MPEG file; give --type mp3|mpeg");
    }
    return type;
}

}  // namespace

int RunInfo(CliContext& cli) {
    int status = ExitCode::kOk;
    QJsonArray files;
    bool first = true;
    for (const QString& path : cli.options.paths) {
        if (cli.interrupts.signalNumber() != 0) {
            return InterruptWatcher::ExitStatusFor(cli.interrupts.signalNumber());
        }
        QString error;
        const QString type = typeOf(cli, path, error);
        if (type.isEmpty()) {
            cli.output.error(error);
            status = ExitCode::kUsage;
            continue;
        }
        // The file as a row of a list of its type, filled as the adding fills it.
        MainModel model(cli.questions, cli.clipboard);
        NewItemList(model, type);
        const int row = model.items.addRow();
        model.items.setCell(row, SharedCell::Filepath, QFileInfo(path).absoluteFilePath());
        FillListItem(model, 0);
        const std::shared_ptr<const JoinTraits> traits = model.items.joinTraits(row);

        if (cli.options.json) {
            QJsonObject file{{QStringLiteral("path"), path},
                             {QStringLiteral("list_type"), type},
                             {QStringLiteral("cells"), CellsObject(model.items, row)}};
            file.insert(QStringLiteral("check"),
                        traits ? QJsonValue(TraitsObject(*traits)) : QJsonValue());
            files.append(file);
            continue;
        }
        QString text = first ? QString() : QStringLiteral("\n");
        first = false;
        text += path + u'\n';
        QStringList lines = CellLines(model.items, row);
        if (traits) {
            lines << TraitLines(*traits);
        }
        for (const QString& line : lines) {
            text += QStringLiteral("  ") + line + u'\n';
        }
        text.chop(1);
        cli.output.result(text);
    }
    if (cli.options.json) {
        cli.output.result(JsonText(QJsonObject{{QStringLiteral("files"), files}}));
    }
    return status;
}
