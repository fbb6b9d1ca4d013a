#pragma once
#include "app/controls/Button.h"

#include <QPointer>

class Popover;

// A button that shows the font of a text; a click opens the list of installed fonts.
class FontField : public Control {
    Q_OBJECT
public:
    explicit FontField(QWidget* parent = nullptr);
    void setFontName(const QString& storedName);    // empty: no font; emits nothing
    void closePopover();
    QSize sizeHint() const override { return {152, 32}; }

Q_SIGNALS:
    void chosen(const QString& storedName);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void toggle();

    QString m_fontName;
    bool m_missing = false;
    QPointer<Popover> m_popover;
};
