#pragma once
#include "app/presets/PresetTile.h"

class Caption;
class PresetGrid;
class PushButton;

// The tiles of the styles that the user has saved, to apply them to the selected text.
class StyleShelf : public QWidget {
    Q_OBJECT
public:
    explicit StyleShelf(QWidget* parent = nullptr);

    // `refusal`: why there is no text to take a style; empty when there is one. `recoverable`: the
    // name of the style that was removed last.
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
    void visibleAreaWanted(QWidget* tile);

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
