#include "cli/CommandLine.h"

#include <optional>

#include "media/ListType.h"

namespace {

const QString kProgram = QStringLiteral("velmora-cli");

std::optional<CliCommand> commandNamed(const QString& name) {
    if (name == QLatin1String("info")) {
        return CliCommand::Info;
    }
    if (name == QLatin1String("check")) {
        return CliCommand::Check;
    }
    if (name == QLatin1String("join")) {
        return CliCommand::Join;
    }
    return std::nullopt;
}

// An option with its value: "--name=value", "--name value", "-o value".
struct OptionValue {
    bool matched = false;
    QString value;
    QString error;
};

class ArgumentReader {
public:
    explicit ArgumentReader(const QStringList& arguments) : arguments_(arguments) {}
    bool atEnd() const { return next_ >= arguments_.size(); }
    QString take() { return arguments_.at(next_++); }

    // Matches argument against one of names; the value comes after "=" or as
    // the next argument.
    OptionValue valueOf(const QString& argument, const QStringList& names) {
        OptionValue result;
        for (const QString& name : names) {
            if (argument == name) {
                result.matched = true;
                if (atEnd()) {
                    result.error =
                        QStringLiteral("option ") + name + QStringLiteral(" needs a value");
                } else {
                    result.value = take();
                }
                return result;
            }
            if (name.startsWith(QLatin1String("--")) && argument.startsWith(name + u'=')) {
                result.matched = true;
                result.value = argument.mid(name.size() + 1);
                return result;
            }
        }
        return result;
    }

private:
    const QStringList& arguments_;
    qsizetype next_ = 1;
};

// The options that every command takes, and those before the command.
bool takeCommonOption(const QString& argument, CliOptions& options) {
    if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
        options.help = true;
    } else if (argument == QLatin1String("--debug")) {
        options.debug = true;
    } else if (argument == QLatin1String("--quiet") || argument == QLatin1String("-q")) {
        options.quiet = true;
    } else {
        return false;
    }
    return true;
}

QString listTypeOf(const QString& value) {
    const QString lower = value.toLower();
    if (lower == QLatin1String("mp3")) {
        return ListTypeText(ListType::Mp3);
    }
    if (lower == QLatin1String("mpeg")) {
        return ListTypeText(ListType::Mpeg);
    }
    return {};
}

std::optional<ProgressForm> progressFormOf(const QString& value) {
    if (value == QLatin1String("auto")) {
        return ProgressForm::Auto;
    }
    if (value == QLatin1String("bar")) {
        return ProgressForm::Bar;
    }
    if (value == QLatin1String("lines")) {
        return ProgressForm::Lines;
    }
    if (value == QLatin1String("none")) {
        return ProgressForm::None;
    }
    return std::nullopt;
}

// One option of a command; false with the reason when it is none or wrong.
bool takeCommandOption(const QString& argument, ArgumentReader& reader, CliOptions& options,
                       QString& error) {
    const CliCommand command = options.command;
    const bool join = command == CliCommand::Join;
    if (takeCommonOption(argument, options)) {
        return true;
    }
    if (command != CliCommand::Join && argument == QLatin1String("--json")) {
        options.json = true;
        return true;
    }
    if (OptionValue type = reader.valueOf(argument, {QStringLiteral("--type")}); type.matched) {
        error = type.error;
        options.listType = listTypeOf(type.value);
        if (error.isEmpty() && options.listType.isEmpty()) {
            error = QStringLiteral("--type takes mp3 or mpeg, not '") + type.value + u'\'';
        }
        return error.isEmpty();
    }
    if (join) {
        if (OptionValue output =
                reader.valueOf(argument, {QStringLiteral("-o"), QStringLiteral("--output")});
            output.matched) {
            error = output.error;
            options.output = output.value;
            if (error.isEmpty() && options.output.isEmpty()) {
                error = QStringLiteral("the output's name is empty");
            }
            return error.isEmpty();
        }
        if (OptionValue progress = reader.valueOf(argument, {QStringLiteral("--progress")});
            progress.matched) {
            error = progress.error;
            const std::optional<ProgressForm> form = progressFormOf(progress.value);
            if (error.isEmpty() && !form) {
                error = QStringLiteral("--progress takes auto, bar, lines or none, not '") +
                        progress.value + u'\'';
            }
            options.progress = form.value_or(ProgressForm::Auto);
            return error.isEmpty();
        }
        if (argument == QLatin1String("--each")) {
            options.each = true;
            return true;
        }
        if (argument == QLatin1String("--overwrite")) {
            options.overwrite = true;
            return true;
        }
        if (argument == QLatin1String("--no-tags")) {
            options.noTags = true;
            return true;
        }
    }
    error = QStringLiteral("unknown option '") + argument + QStringLiteral("' for ") +
            CommandName(command);
    return false;
}

// What the command needs beside its options.
QString missingPart(const CliOptions& options) {
    if (options.help) {
        return {};
    }
    if (options.paths.isEmpty()) {
        switch (options.command) {
            case CliCommand::Info:
                return QStringLiteral("info needs at least one file");
            case CliCommand::Check:
                return QStringLiteral("check needs at least one source");
            case CliCommand::Join:
                return options.each ? QStringLiteral("join --each needs at least one folder")
                                    : QStringLiteral("join needs at least one source");
            case CliCommand::None:
                break;
        }
    }
    if (options.command == CliCommand::Join && options.output.isEmpty()) {
        return options.each ? QStringLiteral("join --each needs -o OUTFOLDER")
                            : QStringLiteral("join needs -o OUTPUT");
    }
    return {};
}

}  // namespace

QString CommandName(CliCommand command) {
    switch (command) {
        case CliCommand::Info:
            return QStringLiteral("info");
        case CliCommand::Check:
            return QStringLiteral("check");
        case CliCommand::Join:
            return QStringLiteral("join");
        case CliCommand::None:
            break;
    }
    return kProgram;
}

ParsedCommandLine ParseCommandLine(const QStringList& arguments) {
    ParsedCommandLine parsed;
    CliOptions& options = parsed.options;
    ArgumentReader reader(arguments);
    // Before the command: the options of the program.
    while (!reader.atEnd() && options.command == CliCommand::None) {
        const QString argument = reader.take();
        if (argument == QLatin1String("--version")) {
            options.version = true;
        } else if (takeCommonOption(argument, options)) {
        } else if (argument.startsWith(u'-')) {
            parsed.error = QStringLiteral("unknown option '") + argument + u'\'';
            return parsed;
        } else if (const std::optional<CliCommand> command = commandNamed(argument)) {
            options.command = *command;
        } else {
            parsed.error = QStringLiteral("unknown command '") + argument + u'\'';
            return parsed;
        }
    }
    if (options.command == CliCommand::None) {
        if (!options.help && !options.version) {
            parsed.error = QStringLiteral("no command given");
        }
        return parsed;
    }
    // After the command: its options and paths; "--" ends the options.
    bool optionsEnded = false;
    while (!reader.atEnd()) {
        const QString argument = reader.take();
        if (!optionsEnded && argument == QLatin1String("--")) {
            optionsEnded = true;
        } else if (!optionsEnded && argument.startsWith(u'-') && argument.size() > 1) {
            if (!takeCommandOption(argument, reader, options, parsed.error)) {
                return parsed;
            }
        } else {
            options.paths.append(argument);
        }
    }
    parsed.error = missingPart(options);
    return parsed;
}

QString UsageLine(CliCommand command) {
    switch (command) {
        case CliCommand::Info:
            return QStringLiteral("Usage: velmora-cli info [--json] [--type mp3|mpeg] FILE...");
        case CliCommand::Check:
            return QStringLiteral("Usage: velmora-cli check [--json] [--type mp3|mpeg] SOURCE...");
        case CliCommand::Join:
            return QStringLiteral(
                "Usage: velmora-cli join [options] -o OUTPUT SOURCE...\n"
                "       velmora-cli join --each [options] -o OUTFOLDER FOLDER...");
        case CliCommand::None:
            break;
    }
    return QStringLiteral(
        "Usage: velmora-cli [--debug] [--quiet] COMMAND [options] PATH...\n"
        "       velmora-cli --help | --version");
}

QString ProgramHelp() {
    return UsageLine(CliCommand::None) +
           QStringLiteral(
               "\n\n"
               "Describes, checks and joins MP3 and MPEG files as Velmora's window does,\n"
               "with no display needed.\n\n"
               "Commands:\n"
               "  info FILE...         each file's cells as the list shows them, and what\n"
               "                       the join check reads of it\n"
               "  check SOURCE...      the list the sources make, its grade (Green, Orange,\n"
               "                       Red) and each file that differs from the first\n"
               "  join -o OUTPUT SOURCE...\n"
               "                       joins the list into OUTPUT\n"
               "  join --each -o OUTFOLDER FOLDER...\n"
               "                       one output per folder, named after the folder\n\n"
               "A SOURCE is a list file (.vlr), a media file or a folder (its files of the\n"
               "list's type, in the order a file manager shows them).\n\n"
               "Options of every command:\n"
               "  -h, --help           this help, or the command's with a command\n"
               "  --version            the program's version\n"
               "  -q, --quiet          no progress and no notes\n"
               "  --debug              writes the debug log in the per-user folder\n\n"
               "Exit status: 0 done (check: Green), 1 check: Orange, join: failed or\n"
               "refused, 2 a bad command line or a source that cannot be read, 3 check:\n"
               "Red, 130 interrupted.\n"
               "Run 'velmora-cli COMMAND --help' for a command's options.");
}

QString CommandHelp(CliCommand command) {
    const QString common = QStringLiteral(
        "  --type mp3|mpeg      the list type, where the sources do not tell it\n"
        "  -q, --quiet          no progress and no notes\n"
        "  --debug              writes the debug log in the per-user folder\n"
        "  -h, --help           this help\n");
    switch (command) {
        case CliCommand::Info:
            return UsageLine(command) +
                   QStringLiteral(
                       "\n\nShows each file's cells as the list would show them, by column "
                       "name,\nand what the join check reads of it.\n\nOptions:\n"
                       "  --json               one JSON document (with format_version)\n") +
                   common + QStringLiteral("\nExit status: 0, or 2 when a file cannot be read.");
        case CliCommand::Check:
            return UsageLine(command) +
                   QStringLiteral(
                       "\n\nMakes the list of the sources and grades it as the window does.\n\n"
                       "Options:\n"
                       "  --json               one JSON document (with format_version)\n") +
                   common +
                   QStringLiteral(
                       "\nExit status: 0 Green, 1 Orange, 3 Red, 2 a bad command line "
                       "or a\nsource that cannot be read.");
        case CliCommand::Join:
            return UsageLine(command) +
                   QStringLiteral(
                       "\n\nJoins the list of the sources into OUTPUT, as the window does.\n"
                       "With --each, joins each FOLDER into OUTFOLDER/NAME.mp3 (or .mpg).\n\n"
                       "Options:\n"
                       "  -o, --output PATH    the output file (with --each: the folder)\n"
                       "  --each               one join per folder\n"
                       "  --overwrite          replaces an output that exists\n"
                       "  --no-tags            no tag and no chapters in a joined MP3\n"
                       "  --progress=FORM      auto, bar, lines (\"Progress: N%\") or none\n") +
                   common +
                   QStringLiteral(
                       "\nExit status: 0 joined, 1 failed or refused (nothing is "
                       "left), 2 a bad\ncommand line, 130 interrupted.");
        case CliCommand::None:
            break;
    }
    return ProgramHelp();
}
