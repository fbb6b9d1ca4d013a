#pragma once
#include "app/presets/PresetTile.h"

class Caption;
class PresetGrid;
class PushButton;

// Shows the text styles that the user has saved as tiles. A tile applies its style to the selected
// text.
class StyleShelf : public QWidget {
    Q_OBJECT
public:
    explicit StyleShelf(QWidget* parent = nullptr);

    // `refusal`: why there is no text to which a style could be applied; empty if there is one.
    // `recoverable`: name of the style that was removed last; empty if there is none.
    void setStyles(const QList<Preset>& styles, const QString& refusal, const QString& recoverable);
    PresetGrid* grid() const { return m_grid; }
    void rename(QUuid id);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void shown();
    void saveRequested();
    void updateRequested(QUuid id);
    void removeRequested(QUuid id);
    void callBackRequested();
    void scrollToRequested(QWidget* tile);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showMenu(QUuid id, QPoint globalPosition);

    QString m_refusal, m_recoverable;
    PushButton* m_save;
    PushButton* m_callBack;
    PresetGrid* m_grid;
    Caption* m_note;
};
