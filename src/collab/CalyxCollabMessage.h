#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

namespace Calyx {

/// The versioned message object whose JSON is the body of an object publish.
class CALYXCLIENT_EXPORT CalyxCollabMessage : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString from READ from WRITE setfrom)
    Q_PROPERTY(QString type READ type WRITE settype)
    Q_PROPERTY(QString version READ version WRITE setversion)
    Q_PROPERTY(QString sourceSystem READ sourceSystem WRITE setsourceSystem)
    Q_PROPERTY(QVariant data READ data WRITE setdata)

public:
    /// The version of the protocol that this library speaks, "3.0.0".
    static const QString PROTOCOL_VERSION;

    /// A message of this protocol version without type and data.
    explicit CalyxCollabMessage(QObject* parent = nullptr);

    /// Sender; PresenterCollab overwrites it with its user token.
    QString from() const { return m_from; }
    /// What kind of message it is, for example "questionStart"; empty at first.
    QString type() const { return m_type; }
    /// PROTOCOL_VERSION unless it was set.
    QString version() const { return m_version; }
    /// "Lumora" unless it was set.
    QString sourceSystem() const { return m_sourceSystem; }
    /// What goes out as "data": before compileData() a map or nothing, afterwards a list that holds one
    /// base64 text.
    QVariant data() const { return m_data; }
    /// The object that compileData() serialises; null when there is none or when it has been deleted. Not
    /// owned.
    QObject* dataobject() const { return m_dataObject; }

    /// Turns the data object, else the map in data(), into JSON, compresses it, and puts it into data() as a
    /// list of one base64 text. With neither, data() stays as it is.
    void compileData();

public Q_SLOTS:
    ///@{
    /// Stores the value unchanged, for the key of its name in the message's JSON.
    void setfrom(QString from) { m_from = from; }
    void settype(QString type) { m_type = type; }
    void setversion(QString version) { m_version = version; }
    void setsourceSystem(QString sourceSystem) { m_sourceSystem = sourceSystem; }
    void setdata(QVariant data) { m_data = data; }
    ///@}
    /// Sets the object that compileData() serialises; it stays the caller's. Null for none: then data()
    /// counts.
    void setdataobject(QObject* object) { m_dataObject = object; }

private:
    QString m_from = QStringLiteral("");
    QString m_type = QStringLiteral("");
    QString m_version = PROTOCOL_VERSION;
    QString m_sourceSystem = QStringLiteral("Lumora");
    QVariant m_data;
    QPointer<QObject> m_dataObject;
};

} // namespace Calyx
