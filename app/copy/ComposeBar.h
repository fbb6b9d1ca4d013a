#pragma once
#include <QWidget>

class TextField;

// The bar with the campaign's objective. It hangs under the top bar, centred on the stage.
class ComposeBar : public QWidget {
    Q_OBJECT
public:
    explicit ComposeBar(QWidget* parent = nullptr);
    void setObjective(const QString& objective);    // shows; emits nothing
    QWidget* objectiveEdit() const;
    void finishEdit();    // ends the edit, so that what is typed reaches the session
    QSize sizeHint() const override { return {1120, 52}; }

Q_SIGNALS:
    void objectiveEdited(const QString& objective);    // when the edit ends

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TextField* m_objective;
};
