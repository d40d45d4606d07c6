#include "join/JoinProgress.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringList>
#include <cmath>
#include <limits>

#include "app/DebugLog.h"
#include "join/JoinScripts.h"
#include "join/JoinWizardState.h"
#include "list/CellValues.h"
#include "list/MainModel.h"
#include "platform/FileHelpers.h"

namespace {

constexpr int kMin16 = std::numeric_limits<std::int16_t>::min();
constexpr int kMax16 = std::numeric_limits<std::int16_t>::max();

bool fits16(long long value) {
    return value >= kMin16 && value <= kMax16;
}

// A whole number of at most 16 bits, as the caption or the tool wrote it
// (blanks around it and a sign are allowed, nothing else).
std::optional<std::int16_t> toInt16(const QString& text) {
    bool ok = false;
    const long long value = text.trimmed().toLongLong(&ok);
    if (!ok || !fits16(value)) {
        return std::nullopt;
    }
    return static_cast<std::int16_t>(value);
}

// The seconds of the time text up to and including its first ".": either
// plain seconds ("29.") or hours, minutes and seconds ("00:00:29.").
std::optional<std::int16_t> secondsOfTimeText(QString text) {
    text.chop(1);  // the "." that cuts off the fraction
    if (!text.contains(u':')) {
        return toInt16(text);
    }
    bool negative = false;
    if (text.startsWith(u'-')) {
        negative = true;
        text.remove(0, 1);
    }
    const QStringList parts = text.split(u':');
    long long total = 0;
    for (const QString& part : parts) {
        if (part.isEmpty() || part.startsWith(u'-') || part.startsWith(u'+')) {
            return std::nullopt;
        }
        const std::optional<std::int16_t> number = toInt16(part);
        if (!number) {
            return std::nullopt;
        }
        total = total * 60 + *number;
        if (!fits16(total)) {
            return std::nullopt;
        }
    }
    return static_cast<std::int16_t>(negative ? -total : total);
}

const QString kCaptionPrefix = QStringLiteral("Join Wizard (");

}  // namespace

QString FormatThousands(double value) {
    if (!std::isfinite(value)) {
        return {};
    }
    const long long whole = std::llround(value);
    if (whole == 0) {
        return {};
    }
    return QLocale().toString(whole);
}

std::optional<QString> PercentCaption(float value, float maximum) {
    if (maximum == 0.0F) {
        return std::nullopt;
    }
    const float percent = value / maximum * 100.0F;
    if (!std::isfinite(percent)) {
        return std::nullopt;
    }
    // nearbyint rounds in the default mode: to nearest, a half to even.
    const long long rounded = std::llrint(std::nearbyint(static_cast<double>(percent)));
    return kCaptionPrefix + QString::number(rounded) + QStringLiteral("%)");
}

void ApplyWatchedFileLength(JoinWizardState& state, std::int64_t length) {
    const float maximum = state.progressMax();
    const float size = static_cast<float>(length);
    state.setProgressValue(maximum < size ? maximum : size);

    const QString figure = FormatThousands(static_cast<double>(length) / 1024.0);
    if (figure.isEmpty() || figure == QStringLiteral("0")) {
        state.setWrittenSizeText(QStringLiteral("0 KB"));
    } else {
        state.setWrittenSizeText(figure + QStringLiteral(" KB"));
    }

    if (const auto caption = PercentCaption(state.progressValue(), state.progressMax())) {
        state.setWindowCaption(*caption);
    }
}

void UpdateSizeSource(const MainModel& model, JoinWizardState& state, const QString& watchedFile) {
    if (IsMpeg2VideoList(model) && state.operationTag() == QStringLiteral("2")) {
        return;  // the tool's status lines are in charge
    }
    if (!FileExists(watchedFile)) {
        return;
    }
    ApplyWatchedFileLength(state, QFileInfo(watchedFile).size());
}

std::optional<ToolStatus> ParseToolStatusLine(const QString& line) {
    if (!line.contains(QStringLiteral("time"))) {
        return std::nullopt;
    }
    ToolStatus status;

    const qsizetype sizeAt = line.indexOf(QStringLiteral("size="));
    if (sizeAt < 0) {
        return std::nullopt;
    }
    const QString behindSize = line.mid(sizeAt + 5);
    // The unit is "kB"; later releases of the tool write "KiB".
    qsizetype unitAt = behindSize.indexOf(QStringLiteral("kB"));
    if (unitAt < 0) {
        unitAt = behindSize.indexOf(QStringLiteral("KiB"));
    }
    if (unitAt < 0) {
        return std::nullopt;
    }
    status.sizeText = behindSize.left(unitAt);

    const qsizetype timeAt = line.indexOf(QStringLiteral("time="));
    if (timeAt < 0) {
        return std::nullopt;
    }
    const QString behindTime = line.mid(timeAt + 5);
    const qsizetype blankAt = behindTime.indexOf(u' ');
    if (blankAt < 0) {
        return std::nullopt;
    }
    const QString timeText = behindTime.left(blankAt);
    const qsizetype dotAt = timeText.indexOf(u'.');
    if (dotAt < 0) {
        return std::nullopt;
    }
    const std::optional<std::int16_t> seconds = secondsOfTimeText(timeText.left(dotAt + 1));
    if (!seconds) {
        return std::nullopt;
    }
    status.seconds = *seconds;
    return status;
}

std::optional<std::int16_t> TotalSecondsOf(const QString& caption) {
    const std::optional<ClockFields> fields = CellValues::clockFields(caption);
    if (!fields || !fits16(fields->hours) || !fits16(fields->minutes) || !fits16(fields->seconds)) {
        return std::nullopt;
    }
    // Each step is a 16-bit figure of its own: 10 hours already overflow.
    long long total = fields->hours * 3600;
    if (!fits16(total)) {
        return std::nullopt;
    }
    const long long minuteSeconds = fields->minutes * 60;
    if (!fits16(minuteSeconds)) {
        return std::nullopt;
    }
    total += minuteSeconds;
    if (!fits16(total)) {
        return std::nullopt;
    }
    total += fields->seconds;
    if (!fits16(total)) {
        return std::nullopt;
    }
    return static_cast<std::int16_t>(total);
}

void HandleToolOutput(const MainModel& model, JoinWizardState& state, const QString& text) {
    const QStringList lines = text.split(u'\r');
    if (!LogPath().isEmpty()) {
        LogEvent(text, 4);
    }
    if (!IsMpeg2VideoList(model) || state.operationTag() != QStringLiteral("2")) {
        return;
    }
    const std::optional<ToolStatus> status = ParseToolStatusLine(lines.at(0));
    if (!status) {
        return;
    }
    const std::optional<std::int16_t> total = TotalSecondsOf(model.state.durationCaption());
    if (!total || *total <= 0) {
        return;  // a bar cannot have a maximum of 0 or less
    }
    state.setProgressMax(static_cast<float>(*total));
    if (status->seconds < 0) {
        return;  // nor a value below 0
    }
    const float done = static_cast<float>(status->seconds);
    state.setProgressValue(state.progressMax() < done ? state.progressMax() : done);

    const QString sizeText = status->sizeText.trimmed();
    bool numeric = false;
    const double kilobytes = QLocale::c().toDouble(sizeText, &numeric);
    state.setWrittenSizeText((numeric ? FormatThousands(kilobytes) : sizeText) +
                             QStringLiteral(" KB"));

    if (const auto caption = PercentCaption(state.progressValue(), state.progressMax())) {
        state.setWindowCaption(*caption);
    }
}

QString ClockText(int seconds) {
    const int hours = (seconds / 3600) % 24;
    const int minutes = (seconds / 60) % 60;
    return QStringLiteral("%1:%2:%3")
        .arg(hours, 2, 10, QLatin1Char('0'))
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
