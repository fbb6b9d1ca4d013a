#pragma once
#include <QStringView>

// The commands that buttons or the tile's menu have as well, by the texts that name them.
namespace CommandText {
inline constexpr QStringView importImages = u"Importar imágenes…",
                             importFolder = u"Importar carpeta…",
                             exportCurrent = u"Exportar actual…", exportAll = u"Exportar todo…",
                             undo = u"Deshacer", redo = u"Rehacer", copyStyle = u"Copiar estilo",
                             pasteStyle = u"Pegar estilo",
                             selectAll = u"Seleccionar todas las imágenes",
                             discard = u"Descartar imagen";
}
