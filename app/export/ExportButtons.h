#pragma once
#include "app/controls/CostChip.h"

#include <QList>
#include <QWidget>

class CostButton;

// The state of batch and session that decides what can be exported now.
struct ExportOffer {
    qsizetype images = 0;       // in the batch
    qsizetype selected = 0;     // images; if 1, it is the current image
    bool isRunning = false;     // an export runs
    bool isIncoming = false;    // the window shows the images of a running import, not the batch's
    Cost current = {}, several = {};
    bool operator==(const ExportOffer&) const = default;
};

// "Exportar 4" where several images are selected, else "Exportar todo".
QString exportSeveralText(qsizetype selected);
// Why nothing can be exported now; empty when something can.
QString refusalOf(const ExportOffer& offer);

// The joined pair of buttons: export the current image; export all images or the selected ones. The
// width does not depend on the selection. Too few credits disable nothing.
class ExportButtons : public QWidget {
    Q_OBJECT
public:
    explicit ExportButtons(QWidget* parent = nullptr);
    void setOffer(const ExportOffer& offer);
    const ExportOffer& offer() const { return m_offer; }
    void setKeys(const QString& current, const QString& several);    // shown in the tooltips
    enum class Wording { whole, brief };
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
