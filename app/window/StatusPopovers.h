#pragma once
#include "studio/StatusLog.h"

#include <QSize>

class QPainter;
class QRectF;
class QWidget;
struct Theme;

// Paints the icon of a status sentence; of StatusKind::working a spinner at `turn`, from 0 to 1.
void paintStatusIcon(QPainter& painter, const QRectF& box, StatusKind kind, const Theme& theme,
                     double turn);

// Make popups no larger than `room`, which delete themselves when they close. The history has
// sentences, oldest first.
QWidget* historyPopover(const QList<StatusEntry>& history, QSize room, QWidget* parent);
// `details`: the names of the files that a sentence only counts.
QWidget* detailsPopover(const QStringList& details, QSize room, QWidget* parent);
