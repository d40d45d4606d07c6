#include "join/RemakeProbe.h"

#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cmath>

const JoinStreamAppearance* JoinStreamMap::deepest() const {
    const auto it =
        std::max_element(streams.begin(), streams.end(),
                         [](const JoinStreamAppearance& a, const JoinStreamAppearance& b) {
                             return a.offset < b.offset;
                         });
    return it == streams.end() ? nullptr : &*it;
}

JoinStreamMap ScanJoinParts(const QStringList& parts, const ScanStop& stop) {
    JoinStreamMap map;
    for (const QString& part : parts) {
        map.bytes += QFileInfo(part).size();
    }
    std::array<bool, 0x200> seen{};
    qint64 bytesBefore = 0;
    double clockBefore = 0;
    bool clocked = true;
    for (qsizetype index = 0; index < parts.size(); ++index) {
        const ProgramStreamMap part = ScanProgramStreamFile(parts.at(index), stop);
        if (!part.complete || part.packs == 0) {
            return map;
        }
        const int position = static_cast<int>(index) + 1;
        for (const StreamAppearance& stream : part.streams) {
            if (!seen[static_cast<std::size_t>(stream.id)]) {
                seen[static_cast<std::size_t>(stream.id)] = true;
                map.streams.push_back({stream.id, position, bytesBefore + stream.offset,
                                       clockBefore + stream.clockSeconds});
            }
        }
        clocked = clocked && part.clockSeconds * RemakeProbeRule::kFastestBytesPerSecond >=
                                 static_cast<double>(part.bytes);
        if (clocked) {
            map.clockedParts = position;
        }
        bytesBefore += part.bytes;
        clockBefore += part.clockSeconds;
    }
    map.whole = true;
    return map;
}

RemakeProbe WholeJoinProbe(qint64 joinBytes) {
    return {std::max(joinBytes, RemakeProbeRule::kMarginBytes),
            RemakeProbeRule::kWholeJoinMicroseconds};
}

RemakeProbe ProbeOfJoin(const JoinStreamMap& map) {
    const JoinStreamAppearance* deepest = map.deepest();
    if (!map.whole || deepest == nullptr) {
        return WholeJoinProbe(map.bytes);
    }
    RemakeProbe probe;
    probe.programStream = true;
    probe.probeBytes = deepest->offset + RemakeProbeRule::kMarginBytes;
    probe.analyzeMicroseconds =
        deepest->part <= map.clockedParts
            ? std::llround(deepest->clockSeconds * 2e6) + RemakeProbeRule::kAnalyzeSlackMicroseconds
            : RemakeProbeRule::kWholeJoinMicroseconds;
    return probe;
}

QStringList JoinStreamRecords(const JoinStreamMap& map, const QStringList& parts) {
    if (!map.whole) {
        return {QStringLiteral("Streams not mapped: the remake reads the whole join.")};
    }
    QStringList records;
    for (const JoinStreamAppearance& stream : map.streams) {
        const QString part = stream.part >= 1 && stream.part <= parts.size()
                                 ? QFileInfo(parts.at(stream.part - 1)).fileName()
                                 : QString();
        records << QStringLiteral("Stream 0x%1 first at byte %2, in %3")
                       .arg(QString::number(stream.id, 16), QString::number(stream.offset), part);
    }
    return records;
}
