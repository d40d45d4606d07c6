// Any piece of tool output, as the MPEG-2 tool's status lines arrive during
// the second step of a join, against any duration caption: the bar stays
// within 0 and its maximum.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "FuzzSupport.h"
#include "join/JoinProgress.h"
#include "join/JoinWizardState.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PrepareFuzzProcess();
    FuzzedDataProvider provider(data, size);
    const QString duration = QString::fromStdString(provider.ConsumeRandomLengthString(16));
    const bool secondStep = provider.ConsumeBool();
    const std::string piece = provider.ConsumeRemainingBytesAsString();
    const QString text = QString::fromUtf8(piece.data(), static_cast<qsizetype>(piece.size()));

    FuzzQuestions questions;
    MemoryClipboard clipboard;
    MainModel model(questions, clipboard);
    NewItemList(model, QStringLiteral("MPEG"));
    const int row = model.items.addRow(QStringLiteral("a.mpg"));
    model.items.setCell(row, 4, QStringLiteral("MPEG-2V"));
    model.state.setDurationCaption(duration);

    JoinWizardState state;
    state.setOperationTag(secondStep ? QStringLiteral("2") : QStringLiteral("1"));
    HandleToolOutput(model, state, text);
    if (state.progressValue() < 0 || state.progressValue() > state.progressMax()) {
        std::abort();
    }
    if (!secondStep && state.progressValue() != 0) {
        std::abort();
    }
    // The line reader and the duration reader on their own.
    std::int64_t sink = 0;
    if (const auto status = ParseToolStatusLine(text)) {
        sink += status->seconds + static_cast<int>(status->sizeText.size());
    }
    if (const auto seconds = TotalSecondsOf(duration)) {
        sink += *seconds;
    }
    KeepFuzzResult(sink);
    return 0;
}
