#pragma once
#include "app/controls/Button.h"
#include "app/publish/PublishShown.h"

class Paragraph;
class SegmentedControl;

// One network of the publish sheet: its state and what can be done there. Of the cards of a sheet
// one is chosen and unfolded.
class NetworkCard : public Control {
    Q_OBJECT
public:
    explicit NetworkCard(SocialPublishNetwork network, QWidget* parent = nullptr);
    // `placement` is that of the sheet; the card uses it while it is chosen.
    void setShown(const NetworkShown& shown, SocialPublishPlacement placement, const QString& site);
    void setChosen(bool chosen);
    void setLocked(bool locked);    // while publishing, nothing can be chosen
    QList<QWidget*> focusOrder() const;
    SocialPublishNetwork network() const { return m_shown.network; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {200, sizeHint().height()}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

Q_SIGNALS:
    void publishRequested();    // while the card is not the chosen one
    void connectRequested();    // also to change the account
    void placementChosen(SocialPublishPlacement placement);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    bool isStoryCard() const;
    void word();
    void place();
    int detailsTop() const;

    NetworkShown m_shown;
    SocialPublishPlacement m_placement = SocialPublishPlacement::feed;
    QString m_site;
    bool m_isLocked = false;
    PushButton* m_connect;
    PushButton* m_change;    // the account
    PushButton* m_publish;
    SegmentedControl* m_placements = nullptr;    // of a network with stories
    Paragraph* m_hint;
};
