#pragma once

#include <QString>
#include <QStringList>

// What ID3Reader::FillComboGenre needs of a drop-down list: empty it, add
// entries in order, select one by position. The core stays free of widgets:
// a window wraps its combo box in GenreComboAdapter, a test uses
// GenreStringList.
class GenreComboTarget {
public:
    virtual ~GenreComboTarget() = default;
    virtual void clear() = 0;
    virtual void addItem(const QString& text) = 0;
    virtual void setCurrentIndex(int index) = 0;
};

// Collects the entries in a plain list and remembers the selected position.
class GenreStringList : public GenreComboTarget {
public:
    void clear() override {
        items.clear();
        currentIndex = -1;
    }
    void addItem(const QString& text) override { items.append(text); }
    void setCurrentIndex(int index) override { currentIndex = index; }

    QStringList items;
    int currentIndex = -1;
};

// Forwards to any control with clear(), addItem(QString) and
// setCurrentIndex(int), such as a combo box of the windows.
template <typename Combo>
class GenreComboAdapter : public GenreComboTarget {
public:
    explicit GenreComboAdapter(Combo& combo) : combo_(combo) {}
    void clear() override { combo_.clear(); }
    void addItem(const QString& text) override { combo_.addItem(text); }
    void setCurrentIndex(int index) override { combo_.setCurrentIndex(index); }

private:
    Combo& combo_;
};
