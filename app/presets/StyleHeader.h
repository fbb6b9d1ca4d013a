#pragma once
#include <QWidget>

class Badge;
class Caption;
class IconButton;

// Whose style the fields below are, how many images a change reaches, and the style's own copy and
// paste.
class StyleHeader : public QWidget {
    Q_OBJECT
public:
    explicit StyleHeader(QWidget* parent = nullptr);
    void setTitle(const QString& title);
    void setReached(int images, const QString& explanation);
    // A reason disables, and is told in the tooltip.
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

// Empty, the widget is enabled; else disabled, with the reason as its tooltip.
void setRefused(QWidget* widget, const QString& reason, const QString& usualToolTip = {});
