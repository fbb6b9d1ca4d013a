#include "app/settings/StorageDetailPanel.h"

#include "app/forms/InfoCard.h"
#include "app/theme/Icons.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

StorageDetailPanel::StorageDetailPanel(QWidget* parent)
    : SettingsPanel(u"Almacenamiento"_s, u"Resumen de uso asociado a tu cuenta."_s, parent)
{
    rows()->addWidget(new InfoCard(
        Icon::storage, u"Sin almacenamiento en la nube"_s,
        u"Moltiva guarda tus imágenes, textos, estilos y sesiones en tu equipo. Esta app no utiliza almacenamiento cloud para tus proyectos."_s));
    rows()->addStretch(1);
}
