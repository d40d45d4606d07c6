#include "join/JoinWizardState.h"

#include <algorithm>

double JoinWizardState::progressFraction() const {
    if (!(progressMax_ > 0.0F)) {
        return 0.0;
    }
    const double fraction = static_cast<double>(progressValue_) / progressMax_;
    return std::clamp(fraction, 0.0, 1.0);
}
