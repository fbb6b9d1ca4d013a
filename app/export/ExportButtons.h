#pragma once
#include "app/controls/CostChip.h"

#include <QList>
#include <QWidget>

class CostButton;

// What decides which exports are possible now, and what they cost.
struct ExportOffer {
    qsizetype images = 0;       // number of images in the batch
    qsizetype selected = 0;     // number of selected images; if 1, the current image
    bool isRunning = false;     // an export runs
    bool isIncoming = false;    // the window shows the images of a running import, not the batch's
    Cost current = {}, several = {};
    bool operator==(const ExportOffer&) const = default;
};

// "Exportar 4" if four images are selected; "Exportar todo" if fewer than two are.
QString exportSeveralText(qsizetype selected);
// Why nothing can be exported now; empty when something can.
QString refusalOf(const ExportOffer& offer);

// Two joined buttons: the left one exports the current image, the right one the selected images or
// all. The width does not depend on the selection. Too few credits do not disable the buttons.
class ExportButtons : public QWidget {
    Q_OBJECT
public:
    explicit ExportButtons(QWidget* parent = nullptr);
    void setOffer(const ExportOffer& offer);
    const ExportOffer& offer() const { return m_offer; }
    void setKeys(const QString& current, const QString& several);    // shown in the tooltips
    // `number`: no words, and of the right button only how many images it exports.
    enum class Wording { whole, brief, number };
    void setWording(Wording wording);
    CostButton* current() const { return m_current; }
    CostButton* several() const { return m_several; }
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override;

Q_SIGNALS:
    void currentRequested();
    void severalRequested();
    void widthChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void word();
    void explain();
    void place();

    CostButton* m_current;
    CostButton* m_several;
    ExportOffer m_offer;
    Wording m_wording = Wording::whole;
    QString m_currentKey, m_severalKey;
};
