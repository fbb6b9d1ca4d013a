#pragma once

#include <QCoroTask>

#include <QPointer>
#include <QString>

class StudioSession;

// Texts of the batch from and to a spreadsheet file. The outcome becomes the session's status.

// The reason why no texts can be imported now, as a sentence; empty when they can.
QString refusalOfTexts(const StudioSession& session);

QCoro::Task<> importTexts(QPointer<StudioSession> session, QString path);
QCoro::Task<> exportTexts(QPointer<StudioSession> session, QString path);
