#include "collab/CalyxCollabMessage.h"

#include "Diagnostics.h"
#include "compression/Lzma.h"
#include "model/JsonSerializer.h"

namespace Calyx {

const QString CalyxCollabMessage::PROTOCOL_VERSION = QStringLiteral("3.0.0");

CalyxCollabMessage::CalyxCollabMessage(QObject* parent) : QObject(parent) {}

void CalyxCollabMessage::compileData()
{
    QString json;
    if (m_dataObject) {
        json = JsonSerializer::serializeToJson(m_dataObject.data());
    } else if (m_data.canConvert<QVariantMap>()) {
        json = JsonSerializer::serializeToJson(m_data.toMap());
    } else {
        qCDebug(diagnostics) << "[CalyxCollabMessage] data object in message is invalid!";
        return;
    }
    QString compressed;
    Lzma::compress64(json, &compressed);
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
