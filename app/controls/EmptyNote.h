#pragma once
#include "app/theme/Icons.h"

#include <QWidget>

// An icon, a title and a sentence in the middle of a page that has nothing to show.
class EmptyNote : public QWidget {
    Q_OBJECT
public:
    // `title` and `sentence` may be empty.
    EmptyNote(Icon icon, const QString& title, const QString& sentence, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon;
    QString m_title;
    QString m_sentence;
};
