#include "media/JoinTraits.h"

namespace {
// "Version 2.5" -> "2.5"; "Layer 3" -> "3".
QString lastWord(const QString& text) {
    return text.section(u' ', -1);
}

QString romanLayer(const QString& layer) {
    const QString number = lastWord(layer);
    if (number == QLatin1String("1")) {
        return QStringLiteral("I");
    }
    if (number == QLatin1String("2")) {
        return QStringLiteral("II");
    }
    if (number == QLatin1String("3")) {
        return QStringLiteral("III");
    }
    return number;
}
}  // namespace

QString AudioTraits::codecText() const {
    if (!isMpegAudio()) {
        return format;
    }
    QString text = QStringLiteral("MPEG");
    if (!version.isEmpty()) {
        text += u'-' + lastWord(version);
    }
    if (!layer.isEmpty()) {
        text += QStringLiteral(" Layer ") + romanLayer(layer);
    }
    return text;
}

QString JoinTraits::containerText() const {
    switch (container) {
        case Container::ProgramStream:
            return QStringLiteral("program stream");
        case Container::ElementaryStream:
            return containerFormat + QStringLiteral(" elementary stream");
        case Container::Other:
            break;
    }
    return containerFormat.isEmpty() ? QStringLiteral("unknown file kind")
                                     : containerFormat + QStringLiteral(" file");
}

JoinTraits::Container ContainerOfFormat(const QString& generalFormat) {
    if (generalFormat == QLatin1String("MPEG-PS")) {
        return JoinTraits::Container::ProgramStream;
    }
    if (generalFormat == QLatin1String("MPEG Video") ||
        generalFormat == QLatin1String("MPEG Audio")) {
        return JoinTraits::Container::ElementaryStream;
    }
    return JoinTraits::Container::Other;
}

QString VideoCodecText(const QString& format, const QString& version) {
    if (format.isEmpty()) {
        return {};
    }
    if (format == QLatin1String("MPEG Video") && !version.isEmpty()) {
        return QStringLiteral("MPEG-") + lastWord(version) + QStringLiteral(" video");
    }
    return format + QStringLiteral(" video");
}

int WholeNumberAtStart(const QString& text) {
    qsizetype end = 0;
    const QString trimmed = text.trimmed();
    while (end < trimmed.size() && trimmed.at(end).isDigit()) {
        ++end;
    }
    bool ok = false;
    const int value = trimmed.left(end).toInt(&ok);
    return ok ? value : 0;
}
