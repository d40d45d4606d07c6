#include "list/ListTypeChange.h"

#include "list/MainModel.h"
#include "platform/RunCommand.h"

void ChangeListType(MainModel& model, const ListTypeChangeSteps& steps) {
    if (model.items.count() > 0) {
        const int answer = model.questions.msgBox(
            QStringLiteral("Warning: this action will clear your list, and then change the type "
                           "of list.\n\nWould you like to save your list first?"),
            Msg::YesNoCancel + Msg::Exclamation);
        if (answer == Msg::Yes) {
            // The list goes only when its save really wrote it.
            if (!steps.saveList || !steps.saveList(0)) {
                return;
            }
            RunCommand(steps.clearList, short(0));
        } else if (answer == Msg::No) {
            RunCommand(steps.clearList, short(0));
        } else {
            return;
        }
    }
    RunCommand(steps.clearColumns);
    RunCommand(steps.addSharedColumns);
    if (model.state.type() == ListType::Mp3) {
        model.state.setListType(ListTypeText(ListType::Mpeg));
        model.state.setTypeImage(ListState::Picture::MPEG);
        RunCommand(steps.addMPEGColumns);
    } else {
        model.state.setListType(ListTypeText(ListType::Mp3));
        model.state.setTypeImage(ListState::Picture::MP3);
        RunCommand(steps.addMP3Columns);
    }
}
