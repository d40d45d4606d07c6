#include "ui/StatusBoxes.h"

#include <QString>

#include "list/ListCheck.h"
#include "list/MainModel.h"

namespace {
// The texts are kept with a carriage return between lines, as they are stored;
// the desktop's message box draws line feeds, so they are shown with those.
// When rows differ from the first, a blank line and the line that says which
// follow the fixed text.
QString lines(const MainModel& model, const QString& text) {
    QString shown = text;
    const QString differing = DifferingRowsLine(model.items);
    if (!differing.isEmpty()) {
        shown += QStringLiteral("\r\r") + differing;
    }
    shown.replace(u'\r', u'\n');
    return shown;
}
}  // namespace

bool ShowListStatusBox(MainModel& model) {
    const Grade grade = model.state.grade();
    if (grade == Grade::Green) {
        model.questions.msgBox(
            lines(model,
                  QStringLiteral("Status: Green\r\rThis status indicates that there is nothing "
                                 "wrong with your list.")),
            Msg::OkOnly + Msg::Information);
        return true;
    }
    if (grade == Grade::Orange) {
        model.questions.msgBox(
            lines(
                model,
                QStringLiteral(
                    "Status: Orange\r\rThis status indicates that there are some (problems) with "
                    "your list.\r\rPossible Reasons:\r-Different Kilohertz\r\rNote: although it is "
                    "recommended that you join files\rwith the same properties, you can still join "
                    "this list!")),
            Msg::OkOnly + Msg::Exclamation);
        return true;
    }
    if (grade == Grade::Red) {
        if (model.items.count() < 2) {
            model.questions.msgBox(
                lines(model,
                      QStringLiteral("Status: Red\r\rThis status indicates that your list cannot "
                                     "be merged this way.\r\rPossible Reasons:\r-There are not "
                                     "enough items in your list.")),
                Msg::OkOnly + Msg::Critical);
        } else {
            model.questions.msgBox(
                lines(model,
                      QStringLiteral("Status: Red\r\rThis status indicates that there are some "
                                     "(problems) with your list.\r\rPossible Reasons:\r-Different "
                                     "Video Codecs\r-Different Dimensions")),
                Msg::OkOnly + Msg::Critical);
        }
        return true;
    }
    return false;
}
