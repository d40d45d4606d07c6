#pragma once

#include "platform/Clipboard.h"

// A clipboard that lives in memory, for tests.
class MemoryClipboard : public Clipboard {
public:
    QString text() const override { return text_; }
    void setText(const QString& text) override { text_ = text; }
    void clear() override { text_.clear(); }

private:
    QString text_;
};
