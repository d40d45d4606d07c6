#pragma once

#include <QElapsedTimer>
#include <QString>

#include "platform/RateLimit.h"

class CliOutput;
class JoinWizardState;

// The progress of a join on standard error, from the same figures the join
// window shows: the operation, the share of the whole join (the two
// operations count half each), the written size, the elapsed time and the
// time left at the pace so far.
//   Bar:   one line that redraws itself, at most ten times a second;
//   Lines: "Progress: N%" whenever the whole percentage changes;
//   None:  nothing.
class JoinProgressReport {
public:
    enum class Form { Bar, Lines, None };

    JoinProgressReport(CliOutput& output, Form form);

    // The state has changed.
    void update(const JoinWizardState& state);
    // The join has ended: the last figures stand.
    void finish(const JoinWizardState& state);

    // The whole join's percentage for the state (0 to 100).
    static int PercentOf(const JoinWizardState& state);

private:
    QString barLine(const JoinWizardState& state, int percent) const;

    CliOutput& output_;
    Form form_;
    RateLimit redraw_{100};
    QElapsedTimer elapsed_;
    int lastPercent_ = -1;
};
