#include "cli/RowReport.h"

#include <QJsonArray>
#include <QLocale>

#include "list/ItemList.h"
#include "media/JoinCheck.h"
#include "media/JoinTraits.h"

namespace {

QString accessName(JoinTraits::Access access) {
    switch (access) {
        case JoinTraits::Access::Readable:
            return QStringLiteral("readable");
        case JoinTraits::Access::Missing:
            return QStringLiteral("missing");
        case JoinTraits::Access::Unreadable:
            return QStringLiteral("unreadable");
    }
    return {};
}

QString audioText(const AudioTraits& audio) {
    const QLocale locale;
    QStringList parts;
    parts << (audio.codecText().isEmpty() ? QStringLiteral("unknown") : audio.codecText());
    if (audio.rate > 0) {
        parts << locale.toString(audio.rate) + QStringLiteral(" Hz");
    }
    if (audio.channels > 0) {
        parts << QString::number(audio.channels) + (audio.channels == 1
                                                        ? QStringLiteral(" channel")
                                                        : QStringLiteral(" channels"));
    }
    return parts.join(QStringLiteral(", "));
}

QJsonObject audioObject(const AudioTraits& audio) {
    return QJsonObject{
        {QStringLiteral("format"), audio.format},   {QStringLiteral("codec"), audio.codecText()},
        {QStringLiteral("version"), audio.version}, {QStringLiteral("layer"), audio.layer},
        {QStringLiteral("rate"), audio.rate},       {QStringLiteral("channels"), audio.channels}};
}

QString videoText(const JoinTraits& traits) {
    const QLocale locale;
    QStringList parts;
    parts << traits.videoCodec;
    parts << QString::number(traits.width) + u'x' + QString::number(traits.height);
    if (traits.frameRate > 0) {
        parts << locale.toString(traits.frameRate, 'g', 6) + QStringLiteral(" frames/s");
    }
    if (!traits.aspectRatio.isEmpty()) {
        parts << QStringLiteral("aspect ") + traits.aspectRatio;
    }
    return parts.join(QStringLiteral(", "));
}

}  // namespace

QStringList CellLines(const ItemList& items, int position) {
    QStringList lines;
    for (int column = 0; column < items.headerCount(); ++column) {
        lines << items.header(column).text + QStringLiteral(": ") + items.cell(position, column);
    }
    return lines;
}

QJsonObject CellsObject(const ItemList& items, int position) {
    QJsonObject cells;
    for (int column = 0; column < items.headerCount(); ++column) {
        cells.insert(items.header(column).text, items.cell(position, column));
    }
    return cells;
}

QStringList TraitLines(const JoinTraits& traits) {
    if (traits.access != JoinTraits::Access::Readable) {
        return {QStringLiteral("File: ") + accessName(traits.access)};
    }
    QStringList lines;
    if (traits.kind == JoinTraits::Kind::Mp3) {
        if (traits.audio.isEmpty()) {
            return {QStringLiteral("Audio: none")};
        }
        return {QStringLiteral("Audio: ") + audioText(traits.audio.first())};
    }
    lines << QStringLiteral("Container: ") + traits.containerText();
    lines << QStringLiteral("Video: ") +
                 (traits.videoCodec.isEmpty() ? QStringLiteral("none") : videoText(traits));
    if (traits.audio.isEmpty()) {
        lines << QStringLiteral("Audio: none");
    }
    for (qsizetype i = 0; i < traits.audio.size(); ++i) {
        lines << QStringLiteral("Audio %1: ").arg(i + 1) + audioText(traits.audio.at(i));
    }
    return lines;
}

QJsonObject TraitsObject(const JoinTraits& traits) {
    QJsonObject object{{QStringLiteral("access"), accessName(traits.access)}};
    if (traits.access != JoinTraits::Access::Readable) {
        return object;
    }
    QJsonArray audio;
    for (const AudioTraits& stream : traits.audio) {
        audio.append(audioObject(stream));
    }
    if (traits.kind == JoinTraits::Kind::Mpeg) {
        object.insert(QStringLiteral("container"), traits.containerFormat);
        object.insert(QStringLiteral("container_kind"), traits.containerText());
        if (traits.videoCodec.isEmpty()) {
            object.insert(QStringLiteral("video"), QJsonValue());
        } else {
            object.insert(QStringLiteral("video"),
                          QJsonObject{{QStringLiteral("codec"), traits.videoCodec},
                                      {QStringLiteral("width"), traits.width},
                                      {QStringLiteral("height"), traits.height},
                                      {QStringLiteral("frame_rate"), traits.frameRate},
                                      {QStringLiteral("aspect_ratio"), traits.aspectRatio}});
        }
    }
    object.insert(QStringLiteral("audio"), audio);
    return object;
}

QString MarkName(const RowCheck& check) {
    switch (check.mark) {
        case RowCheck::Mark::None:
            return QStringLiteral("none");
        case RowCheck::Mark::Orange:
            return QStringLiteral("orange");
        case RowCheck::Mark::Red:
            return QStringLiteral("red");
    }
    return {};
}
