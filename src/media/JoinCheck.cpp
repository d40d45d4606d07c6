#include "media/JoinCheck.h"

#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <cmath>

namespace {

using Mark = RowCheck::Mark;
using Access = JoinTraits::Access;

// One value on which the row and the first row differ, in user words.
struct Difference {
    Mark mark;
    QString row;
    QString first;
};

class Differences {
public:
    void add(Mark mark, const QString& row, const QString& first) {
        list_.append({mark, row, first});
    }
    RowCheck result() const {
        RowCheck check;
        if (list_.isEmpty()) {
            return check;
        }
        QStringList row;
        QStringList first;
        for (const Difference& difference : list_) {
            check.mark = std::max(check.mark, difference.mark);
            row.append(difference.row);
            first.append(difference.first);
        }
        QString rowText = row.join(QStringLiteral(", "));
        rowText[0] = rowText.at(0).toUpper();
        check.reason =
            rowText + QStringLiteral(": the first file is ") + first.join(QStringLiteral(", "));
        return check;
    }

private:
    QList<Difference> list_;
};

QString rateText(int rate) {
    return rate > 0 ? QLocale().toString(rate) + QStringLiteral(" Hz")
                    : QStringLiteral("an unknown rate");
}

QString channelText(int channels) {
    if (channels == 1) {
        return QStringLiteral("mono");
    }
    if (channels == 2) {
        return QStringLiteral("stereo");
    }
    return channels > 0 ? QLocale().toString(channels) + QStringLiteral(" channels")
                        : QStringLiteral("an unknown channel count");
}

QString codecText(const AudioTraits& audio) {
    const QString codec = audio.codecText();
    return codec.isEmpty() ? QStringLiteral("an unknown audio format") : codec;
}

// MP3 list: the first audio stream's MPEG version and layer, its rate and
// its channel count.
void compareMp3(const JoinTraits& first, const JoinTraits& row, Differences& out) {
    const auto describe = [](const JoinTraits& traits) {
        if (traits.audio.isEmpty()) {
            return QStringLiteral("no audio");
        }
        const AudioTraits& audio = traits.audio.first();
        if (!audio.isMpegAudio()) {
            return audio.format.isEmpty()
                       ? QStringLiteral("not MPEG audio")
                       : QStringLiteral("not MPEG audio (") + audio.format + u')';
        }
        return codecText(audio);
    };
    const bool rowMpeg = !row.audio.isEmpty() && row.audio.first().isMpegAudio();
    const bool firstMpeg = !first.audio.isEmpty() && first.audio.first().isMpegAudio();
    if (!rowMpeg || !firstMpeg) {
        if (describe(row) != describe(first)) {
            out.add(Mark::Red, describe(row), describe(first));
        }
        return;
    }
    const AudioTraits& a = row.audio.first();
    const AudioTraits& b = first.audio.first();
    if (a.codecText() != b.codecText()) {
        out.add(Mark::Red, codecText(a), codecText(b));
    }
    if (a.channels != b.channels) {
        out.add(Mark::Orange, channelText(a.channels), channelText(b.channels));
    }
    if (a.rate != b.rate) {
        out.add(Mark::Orange, rateText(a.rate), rateText(b.rate));
    }
}

QString frameRateText(double frameRate) {
    if (frameRate <= 0) {
        return QStringLiteral("an unknown frame rate");
    }
    QString text = QLocale().toString(frameRate, 'f', 3);
    const QChar point = QLocale().decimalPoint().at(0);
    if (text.contains(point)) {
        while (text.endsWith(u'0')) {
            text.chop(1);
        }
        if (text.endsWith(point)) {
            text.chop(1);
        }
    }
    return text + QStringLiteral(" fps");
}

QString sizeText(const JoinTraits& traits) {
    return QString::number(traits.width) + u'x' + QString::number(traits.height);
}

QString aspectText(const QString& aspect) {
    return aspect.isEmpty() ? QStringLiteral("an unknown aspect ratio")
                            : QStringLiteral("aspect ratio ") + aspect;
}

QString audioCountText(qsizetype count) {
    if (count == 0) {
        return QStringLiteral("no audio");
    }
    return count == 1 ? QStringLiteral("1 audio stream")
                      : QLocale().toString(count) + QStringLiteral(" audio streams");
}

// MPEG list: the container kind, the video stream, and the audio streams one
// by one when both files have as many.
void compareMpeg(const JoinTraits& first, const JoinTraits& row, Differences& out) {
    if (row.container != first.container) {
        out.add(Mark::Red, row.containerText(), first.containerText());
    }
    const auto video = [](const JoinTraits& traits) {
        return traits.videoCodec.isEmpty() ? QStringLiteral("no video") : traits.videoCodec;
    };
    if (row.videoCodec != first.videoCodec) {
        out.add(Mark::Red, video(row), video(first));
    }
    if (!row.videoCodec.isEmpty() && !first.videoCodec.isEmpty()) {
        if (row.width != first.width || row.height != first.height) {
            out.add(Mark::Red, sizeText(row), sizeText(first));
        }
        if (std::fabs(row.frameRate - first.frameRate) > 0.0005) {
            out.add(Mark::Red, frameRateText(row.frameRate), frameRateText(first.frameRate));
        }
        if (row.aspectRatio != first.aspectRatio) {
            out.add(Mark::Orange, aspectText(row.aspectRatio), aspectText(first.aspectRatio));
        }
    }
    if (row.audio.size() != first.audio.size()) {
        out.add(Mark::Red, audioCountText(row.audio.size()), audioCountText(first.audio.size()));
        return;
    }
    const bool several = row.audio.size() > 1;
    for (qsizetype i = 0; i < row.audio.size(); ++i) {
        const QString name =
            several ? QStringLiteral("audio %1 ").arg(i + 1) : QStringLiteral("audio ");
        const AudioTraits& a = row.audio.at(i);
        const AudioTraits& b = first.audio.at(i);
        if (a.codecText() != b.codecText()) {
            out.add(Mark::Red, name + codecText(a), name + codecText(b));
        }
        if (a.rate != b.rate) {
            out.add(Mark::Red, name + rateText(a.rate), name + rateText(b.rate));
        }
        if (a.channels != b.channels) {
            out.add(Mark::Orange, name + channelText(a.channels), name + channelText(b.channels));
        }
    }
}

}  // namespace

RowCheck CheckAgainstFirst(const JoinTraits& first, const JoinTraits& row) {
    if (first.kind != row.kind) {
        return {};
    }
    if (row.access == Access::Missing) {
        return {Mark::Red, QStringLiteral("This file is missing.")};
    }
    if (row.access == Access::Unreadable) {
        return {Mark::Red, QStringLiteral("This file cannot be read.")};
    }
    if (first.access == Access::Missing) {
        return {Mark::Red, QStringLiteral("The first file is missing.")};
    }
    if (first.access == Access::Unreadable) {
        return {Mark::Red, QStringLiteral("The first file cannot be read.")};
    }
    Differences differences;
    if (row.kind == JoinTraits::Kind::Mp3) {
        compareMp3(first, row, differences);
    } else {
        compareMpeg(first, row, differences);
    }
    return differences.result();
}
