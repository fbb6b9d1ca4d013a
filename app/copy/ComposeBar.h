#pragma once
#include <QWidget>

class TextField;

// The bar for editing the campaign's objective. It lies below the top bar, centred on the stage.
class ComposeBar : public QWidget {
    Q_OBJECT
public:
    explicit ComposeBar(QWidget* parent = nullptr);
    void setObjective(const QString& objective);    // emits nothing
    QWidget* objectiveEdit() const;
    void finishEdit();    // ends the edit under way, which may emit objectiveEdited()
    QSize sizeHint() const override { return {1120, 52}; }

Q_SIGNALS:
    void objectiveEdited(const QString& objective);    // an edit has ended with another text

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TextField* m_objective;
};
