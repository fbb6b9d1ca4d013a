#pragma once
#include <QWidget>

class Badge;
class Caption;
class IconButton;

// The heading above the style fields: whose style they show, how many images a change reaches, and
// buttons to copy and paste the style.
class StyleHeader : public QWidget {
    Q_OBJECT
public:
    explicit StyleHeader(QWidget* parent = nullptr);
    void setTitle(const QString& title);
    void setReached(int images, const QString& explanation);
    // `reason` disables the button and becomes its tooltip; an empty one enables the button.
    void setCopyRefused(const QString& reason);
    void setPasteRefused(const QString& reason);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void copyRequested();
    void pasteRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void showReached();

    int m_images = 1;
    Caption* m_title;
    Badge* m_reached;
    IconButton* m_copy;
    IconButton* m_paste;
};

// Disables the widget and makes `reason` its tooltip. An empty reason enables the widget, with
// `usualToolTip`.
void setRefused(QWidget* widget, const QString& reason, const QString& usualToolTip = {});
