#pragma once

#include "join/ScriptDialect.h"

// The POSIX shell language: every path single-quoted (an embedded quote
// written as '\''), so that no character of a file name is ever interpreted;
// "/" separators, LF line ends; every command with its input from /dev/null.
class ShDialect final : public ScriptDialect {
public:
    // A path as one literal shell word. A path that starts with "-" gets "./"
    // in front, so that no tool takes it for an option.
    static QString quote(const QString& path);

    QString lineEnd() const override;
    QString childPath(const QString& folder, const QString& name) const override;
    QStringList headLines(const QString& host) const override;
    QString echoLine(const QString& text) const override;
    QStringList stopIfGoneLines(const QString& scriptPath) const override;
    QString firstCopyLine(const QString& item, const QString& tempFile) const override;
    QString appendCopyLine(const QString& item, const QString& tempFile) const override;
    QString mpegJoinLine(const QString& tool, const QStringList& items,
                         const QString& tempFile) const override;
    QStringList mp3FixLines(const Mp3Fix& fix) const override;
    QString mpeg2FixLine(const MpegRemake& remake) const override;
    bool remakesMpeg1() const override;
    QString mpeg1FixLine(const MpegRemake& remake) const override;
    QString checkedStep(const QString& command, const StepCheck& check) const override;
    QString deleteFileLine(const QString& path) const override;
    QString removeMarkerLine(const QString& markerFolder) const override;
    QString exitLine() const override;
};
