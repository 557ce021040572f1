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
        map = m_data.toMap();
    } else {
        qCDebug(diagnostics) << "[CalyxCollabMessage] data object in message is invalid!";
        return;
    }
    QString compressed;
    LzmaBlock::encode64(JsonWriter::write(map), &compressed);
    m_data = QVariantList{compressed};
}

void CalyxCollabMessage::setfrom(QString from)
{
    m_from = from;
}

void CalyxCollabMessage::settype(QString type)
{
    m_type = type;
}

void CalyxCollabMessage::setversion(QString version)
{
    m_version = version;
}

void CalyxCollabMessage::setsourceSystem(QString sourceSystem)
{
    m_sourceSystem = sourceSystem;
}

void CalyxCollabMessage::setdata(QVariant data)
{
    m_data = data;
}

void CalyxCollabMessage::setdataobject(QObject* object)
{
    m_dataObject = object;
}

} // namespace Calyx
