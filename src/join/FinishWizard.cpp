#include "join/FinishWizard.h"

#include <QFileInfo>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "join/JoinProgress.h"
#include "join/JoinScripts.h"
#include "join/JoinWizardState.h"
#include "list/MainModel.h"
#include "platform/Shell.h"

void FinishWizard(const MainModel& model, JoinWizardState& state, JoinEnd end) {
    state.setTimerEnabled(false);
    if (!LogPath().isEmpty()) {
        LogEvent(QStringLiteral("Operation2 Size=") + state.writtenSizeText(), 4);
    }
    state.setWindowCaption(QStringLiteral("Join Wizard"));
    state.setHeaderSubText(QStringLiteral("You may now close this wizard..."));
    state.setElapsedTimerEnabled(false);
    state.setElapsedTimeCaption(QStringLiteral("Time taken:"));

    switch (end) {
        case JoinEnd::Finished: {
            const QFileInfo output(OutputFilePath(model));
            if (!output.exists() || !output.isFile()) {
                // Nothing to measure: the rest does not happen, and the window
                // keeps "&Cancel", whose clean-up then shows the cancelled state.
                return;
            }
            // No "0 KB" here: an output under half a KB shows " KB" alone.
            state.setWrittenSizeText(FormatThousands(static_cast<double>(output.size()) / 1024.0) +
                                     QStringLiteral(" KB"));
            state.setOperationText(QStringLiteral("Finished!"));
            state.setProgressValue(state.progressMax());
            break;
        }
        case JoinEnd::Cancelled:
            state.setWrittenSizeText(QStringLiteral("[Cancelled]"));
            state.setOperationText(QStringLiteral("Cancelled!"));
            state.setProgressValue(state.progressMax());
            break;
        case JoinEnd::Failed:
            state.setWrittenSizeText(QStringLiteral("[Failed]"));
            state.setOperationText(QStringLiteral("Failed!"));
            break;
    }
    state.setCancelButtonCaption(QStringLiteral("&Close"));
    state.setCancelButtonEnabled(true);
    state.setOptionsButtonEnabled(end == JoinEnd::Finished);
}

void LaunchOutputFile(const MainModel& model) {
    ShellOpen(OutputFilePath(model), InstallFolder());
}

void OpenOutputFolder(const MainModel& model) {
    ShowItemInFolder(OutputFilePath(model), InstallFolder());
}

void SetID3TagOfOutput(const MainModel& model, JoinWizardState& state) {
    state.requestTagEditor(OutputFilePath(model));
}
