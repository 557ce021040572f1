#include "collab/CalyxCollabMessage.h"

#include "base/Diagnostics.h"
#include "base/JsonWriter.h"
#include "compression/LzmaBlock.h"
#include "model/JsonSerializer.h"

namespace Calyx {

const QString CalyxCollabMessage::PROTOCOL_VERSION = QStringLiteral("3.0.0");

CalyxCollabMessage::CalyxCollabMessage(QObject* parent) : QObject(parent) {}

void CalyxCollabMessage::compileData()
{
    QVariantMap map;
    if (m_dataObject) {
        map = JsonSerializer::buildObjectMap(m_dataObject.data(), JsonSerializer::getIgnorePropertiesList(),
                                             JsonSerializer::MAX_RECURSE_DEPTH);
    } else if (m_data.canConvert<QVariantMap>()) {
        map = m_data.value<QVariantMap>();
    } else {
        qCDebug(diagnostics) << "[CalyxCollabMessage] data object in message is invalid!";
        return;
    }
    QString compressed;
    LzmaBlock::encode64(JsonWriter::write(map), &compressed);
    m_data = QVariantList{compressed};
}

} // namespace Calyx
