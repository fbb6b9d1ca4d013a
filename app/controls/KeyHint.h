#pragma once
#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

struct KeyHint {
    QStringList keys;    // names of keys; each is painted on a key cap of its own
    QString meaning;
    bool operator==(const KeyHint&) const = default;
};

// A row of hints: for each hint its keys, painted as key caps, and their meaning.
class KeyHints : public QWidget {
    Q_OBJECT
public:
    explicit KeyHints(const QList<KeyHint>& hints = {}, QWidget* parent = nullptr);
    void setHints(const QList<KeyHint>& hints);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<KeyHint> m_hints;
};
