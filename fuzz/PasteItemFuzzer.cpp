// Any clipboard text pasted into a list: an item entry adds exactly one row
// and selects it; anything else shows the one message and adds nothing.
#include <cstdlib>

#include "FuzzSupport.h"
#include "list/ClipboardModule.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PrepareFuzzProcess();
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    FuzzQuestions questions;
    MemoryClipboard clipboard;
    MainModel model(questions, clipboard);
    NewItemList(model, (size % 2) != 0 ? QStringLiteral("MP3") : QStringLiteral("MPEG"));
    model.items.addRow(QStringLiteral("first"));
    clipboard.setText(text);

    PasteItem(model);
    if (text.startsWith(QStringLiteral("VLR:"))) {
        if (questions.boxes != 0 || model.items.count() != 2 || model.state.selectedIndex() != 2) {
            std::abort();
        }
    } else if (questions.boxes != 1 ||
               questions.lastPrompt != QStringLiteral("Invalid Clipboard Entry.") ||
               model.items.count() != 1) {
        std::abort();
    }
    return 0;
}
