#pragma once

#include "platform/Clipboard.h"

// The command line has no desktop clipboard; the list routines that copy
// keep their text here for as long as the process runs.
class TextClipboard : public Clipboard {
public:
    QString text() const override { return text_; }
    void setText(const QString& text) override { text_ = text; }
    void clear() override { text_.clear(); }

private:
    QString text_;
};
