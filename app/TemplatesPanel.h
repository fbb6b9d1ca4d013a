#pragma once
#include <QWidget>

class LineField;
class PushButton;

// Compositions to use again.
class TemplatesPanel : public QWidget {
    Q_OBJECT
public:
    explicit TemplatesPanel(QWidget* parent = nullptr);
    QList<QWidget*> focusOrder() const;

private:
    LineField* m_search;
    PushButton* m_save;
};
