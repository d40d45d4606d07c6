#pragma once

#include <QString>

// The text clipboard. The program wraps the system clipboard; tests use a plain
// in-memory one.
class Clipboard {
public:
    virtual ~Clipboard() = default;
    virtual QString text() const = 0;
    virtual void setText(const QString& text) = 0;
    virtual void clear() = 0;
};
