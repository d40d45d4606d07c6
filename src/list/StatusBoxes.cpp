#include "list/StatusBoxes.h"

#include "list/ListCheck.h"
#include "list/MainModel.h"

namespace {
// The texts are kept with a carriage return between lines, as they are stored;
// the desktop's message box and the terminal draw line feeds, so they are
// given with those. When rows differ from the first, a blank line and the
// line that says which follow the fixed text.
ListStatusExplanation explanation(const MainModel& model, const QString& text, int style) {
    QString shown = text;
    const QString differing = DifferingRowsLine(model.items);
    if (!differing.isEmpty()) {
        shown += QStringLiteral("\r\r") + differing;
    }
    shown.replace(u'\r', u'\n');
    return {shown, style};
}
}  // namespace

std::optional<ListStatusExplanation> ExplainListStatus(const MainModel& model) {
    const Grade grade = model.state.grade();
    if (grade == Grade::Green) {
        return explanation(model,
                           QStringLiteral("Status: Green\r\rThis status indicates that there is "
                                          "nothing wrong with your list."),
                           Msg::OkOnly + Msg::Information);
    }
    if (grade == Grade::Orange) {
        return explanation(
            model,
            QStringLiteral(
                "Status: Orange\r\rThis status indicates that there are some (problems) with "
                "your list.\r\rPossible Reasons:\r-Different Kilohertz\r\rNote: although it is "
                "recommended that you join files\rwith the same properties, you can still join "
                "this list!"),
            Msg::OkOnly + Msg::Exclamation);
    }
    if (grade == Grade::Red) {
        if (model.items.count() < 2) {
            return explanation(model,
                               QStringLiteral("Status: Red\r\rThis status indicates that your list "
                                              "cannot be merged this way.\r\rPossible Reasons:\r-"
                                              "There are not enough items in your list."),
                               Msg::OkOnly + Msg::Critical);
        }
        return explanation(model,
                           QStringLiteral("Status: Red\r\rThis status indicates that there are "
                                          "some (problems) with your list.\r\rPossible "
                                          "Reasons:\r-Different Video Codecs\r-Different "
                                          "Dimensions"),
                           Msg::OkOnly + Msg::Critical);
    }
    return std::nullopt;
}

bool ShowListStatusBox(MainModel& model) {
    const std::optional<ListStatusExplanation> shown = ExplainListStatus(model);
    if (!shown) {
        return false;
    }
    model.questions.msgBox(shown->text, shown->style);
    return true;
}
