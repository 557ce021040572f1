#pragma once

#include "calyxclient_export.h"

#include <QObject>
#include <QString>
#include <QVariant>

namespace Calyx {

/// A teacher card, as learner devices show it.
class CALYXCLIENT_EXPORT Card : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool active READ active WRITE setactive)
    Q_PROPERTY(bool autoSend READ autoSend WRITE setautoSend)
    Q_PROPERTY(QVariantList components READ components WRITE setcomponents)
    Q_PROPERTY(bool hasRendered READ hasRendered WRITE sethasRendered)
    Q_PROPERTY(QString id READ id WRITE setid)
    Q_PROPERTY(bool isTeacherCard READ isTeacherCard WRITE setisTeacherCard)
    Q_PROPERTY(QString notes READ notes WRITE setnotes)
    Q_PROPERTY(int ordinal READ ordinal WRITE setordinal)
    Q_PROPERTY(bool primary READ primary WRITE setprimary)
    Q_PROPERTY(bool pristine READ pristine WRITE setpristine)
    Q_PROPERTY(QString remoteId READ remoteId WRITE setremoteId)
    Q_PROPERTY(QVariantMap segment READ segment WRITE setsegment)
    Q_PROPERTY(QVariantMap styles READ styles WRITE setstyles)
    Q_PROPERTY(QVariantList tracks READ tracks WRITE settracks)
    Q_PROPERTY(QString type READ type WRITE settype)
    Q_PROPERTY(bool visible READ visible WRITE setvisible)

public:
    explicit Card(QObject* parent = nullptr);

    bool active() const { return m_active; }
    bool autoSend() const { return m_autoSend; }
    QVariantList components() const { return m_components; }
    bool hasRendered() const { return m_hasRendered; }
    QString id() const { return m_id; }
    bool isTeacherCard() const { return m_isTeacherCard; }
    QString notes() const { return m_notes; }
    int ordinal() const { return m_ordinal; }
    bool primary() const { return m_primary; }
    bool pristine() const { return m_pristine; }
    QString remoteId() const { return m_remoteId; }
    QVariantMap segment() const { return m_segment; }
    /// "backgroundColor", "backgroundImage" and "backgroundSize", as in CSS.
    QVariantMap styles() const { return m_styles; }
    QVariantList tracks() const { return m_tracks; }
    QString type() const { return m_type; }
    bool visible() const { return m_visible; }

public Q_SLOTS:
    void setactive(bool active);
    void setautoSend(bool autoSend);
    void setcomponents(QVariantList components);
    void sethasRendered(bool hasRendered);
    void setid(QString value);
    void setisTeacherCard(bool isTeacherCard);
    void setnotes(QString notes);
    void setordinal(int ordinal);
    void setprimary(bool primary);
    void setpristine(bool pristine);
    void setremoteId(QString remoteId);
    void setsegment(QVariantMap segment);
    void setstyles(QVariantMap styles);
    void settracks(QVariantList tracks);
    void settype(QString type);
    void setvisible(bool visible);
    /// Sets the background image to \p url, unchanged: a data URI, or a CSS `url('...')`.
    void setBackgroundImage(QString url);

private:
    bool m_active = true;
    bool m_autoSend = true;
    QVariantList m_components;
    bool m_hasRendered = true;
    QString m_id = QStringLiteral("");
    bool m_isTeacherCard = true;
    QString m_notes = QStringLiteral("");
    int m_ordinal = 1;
    bool m_primary = true;
    bool m_pristine = true;
    QString m_remoteId = QStringLiteral("");
    QVariantMap m_segment;
    QVariantMap m_styles;
    QVariantList m_tracks;
    QString m_type = QStringLiteral("TEACHER");
    bool m_visible = true;
};

} // namespace Calyx
