// Any bytes as a list file, opened through the Open List command: a file that
// is refused shows the one message and leaves the list as it was; a file that
// is taken never yields more rows than it has lines.
#include <cstdlib>

#include "FuzzSupport.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PrepareFuzzProcess();
    const QString path = WriteFuzzFile(QStringLiteral("input.vlr"), data, size);

    FuzzQuestions questions(path);
    MemoryClipboard clipboard;
    MainModel model(questions, clipboard);
    NewItemList(model, QStringLiteral("MP3"));
    model.items.addRow(QStringLiteral("kept"));

    OpenList(model);
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (questions.boxes > 0) {
        if (questions.boxes != 1 ||
            questions.lastPrompt != QStringLiteral("Unable to open; Invalid File!") ||
            model.items.count() != 1 || model.items.cell(1, 0) != QStringLiteral("kept")) {
            std::abort();
        }
    } else if (model.items.count() > bytes.count('\n') + bytes.count('\r') + 1) {
        std::abort();
    }
    // Everything read can be written again.
    KeepFuzzResult(ListFileText(model).size());
    return 0;
}
