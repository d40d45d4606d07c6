#include "cli/JoinProgressReport.h"

#include <algorithm>
#include <cmath>

#include "cli/CliOutput.h"
#include "join/JoinProgress.h"
#include "join/JoinWizardState.h"
#include "platform/Terminal.h"

namespace {
constexpr int kBarWidth = 20;

bool finishedState(const JoinWizardState& state) {
    return state.operationText() == QLatin1String("Finished!");
}
}  // namespace

JoinProgressReport::JoinProgressReport(CliOutput& output, Form form)
    : output_(output), form_(output.quiet() ? Form::None : form) {
    elapsed_.start();
}

int JoinProgressReport::PercentOf(const JoinWizardState& state) {
    if (finishedState(state)) {
        return 100;
    }
    const int operation = state.operationTag() == QLatin1String("2") ? 1 : 0;
    const double share = (operation + state.progressFraction()) / 2.0;
    return std::clamp(static_cast<int>(std::floor(share * 100.0)), 0, 100);
}

QString JoinProgressReport::barLine(const JoinWizardState& state, int percent) const {
    const qint64 seconds = elapsed_.elapsed() / 1000;
    QString line = state.operationText() + QStringLiteral(" ") +
                   QStringLiteral("%1%").arg(percent, 3) + QStringLiteral(" [");
    const int filled = percent * kBarWidth / 100;
    line += QString(filled, u'#') + QString(kBarWidth - filled, u'.') + QStringLiteral("] ");
    line += state.writtenSizeText() + QStringLiteral("  ") + ClockText(static_cast<int>(seconds));
    if (percent > 0 && percent < 100) {
        const double left = static_cast<double>(elapsed_.elapsed()) * (100 - percent) / percent;
        line += QStringLiteral(", ") + ClockText(static_cast<int>(left / 1000.0 + 0.5)) +
                QStringLiteral(" left");
    }
    // A line wider than the terminal would wrap, and the next redraw would
    // start on the wrapped part.
    const int columns = StandardErrorColumns();
    if (columns > 1 && line.size() >= columns) {
        line.truncate(columns - 1);
    }
    return line;
}

void JoinProgressReport::update(const JoinWizardState& state) {
    const int percent = PercentOf(state);
    switch (form_) {
        case Form::None:
            return;
        case Form::Lines:
            if (percent != lastPercent_) {
                lastPercent_ = percent;
                output_.progressLine(QStringLiteral("Progress: %1%").arg(percent));
            }
            return;
        case Form::Bar:
            if (redraw_.due()) {
                output_.redrawProgress(barLine(state, percent));
            }
            return;
    }
}

void JoinProgressReport::finish(const JoinWizardState& state) {
    if (form_ == Form::Bar) {
        output_.redrawProgress(barLine(state, PercentOf(state)));
        output_.endProgress();
        return;
    }
    update(state);
}
