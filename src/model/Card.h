#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QString>
#include <QVariant>

namespace Calyx {

/// A teacher card, as learner devices show it. Each getter is a Qt property and a key of the JSON. The values
/// go out as they are, for the devices to understand.
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
    /// A visible teacher card without a picture, with the values that each getter names.
    explicit Card(QObject* parent = nullptr);

    /// Whether the card is in use; true at first.
    bool active() const { return m_active; }
    /// Whether the card goes to learners without being asked for; true at first.
    bool autoSend() const { return m_autoSend; }
    /// The pictures and texts on the card, a map each; empty at first.
    QVariantList components() const { return m_components; }
    /// Whether the card has been drawn; true at first.
    bool hasRendered() const { return m_hasRendered; }
    /// The card's id; that of the question for a card behind a question. Empty at first.
    QString id() const { return m_id; }
    /// Whether the card is the teacher's; true at first.
    bool isTeacherCard() const { return m_isTeacherCard; }
    /// The teacher's notes; empty at first.
    QString notes() const { return m_notes; }
    /// The place of the card in the lesson; 1 at first.
    int ordinal() const { return m_ordinal; }
    /// Whether the card is the main one of its segment; true at first.
    bool primary() const { return m_primary; }
    /// Whether the card is unchanged since it was made; true at first.
    bool pristine() const { return m_pristine; }
    /// The card's id on the service; empty at first.
    QString remoteId() const { return m_remoteId; }
    /// The part of the lesson that the card belongs to; empty at first.
    QVariantMap segment() const { return m_segment; }
    /// "backgroundColor" and "backgroundImage" (both empty at first) and "backgroundSize" ("100%"), as in
    /// CSS.
    QVariantMap styles() const { return m_styles; }
    /// The tracks of the lesson that the card belongs to; empty at first.
    QVariantList tracks() const { return m_tracks; }
    /// The kind of card; "TEACHER" at first.
    QString type() const { return m_type; }
    /// Whether devices show the card; true at first.
    bool visible() const { return m_visible; }

public Q_SLOTS:
    ///@{
    /// Stores the value unchanged; emits nothing. The getter of the same name tells what it means.
    void setactive(bool active) { m_active = active; }
    void setautoSend(bool autoSend) { m_autoSend = autoSend; }
    void setcomponents(QVariantList components) { m_components = components; }
    void sethasRendered(bool hasRendered) { m_hasRendered = hasRendered; }
    void setid(QString value) { m_id = value; }
    void setisTeacherCard(bool isTeacherCard) { m_isTeacherCard = isTeacherCard; }
    void setnotes(QString notes) { m_notes = notes; }
    void setordinal(int ordinal) { m_ordinal = ordinal; }
    void setprimary(bool primary) { m_primary = primary; }
    void setpristine(bool pristine) { m_pristine = pristine; }
    void setremoteId(QString remoteId) { m_remoteId = remoteId; }
    void setsegment(QVariantMap segment) { m_segment = segment; }
    void setstyles(QVariantMap styles) { m_styles = styles; }
    void settracks(QVariantList tracks) { m_tracks = tracks; }
    void settype(QString type) { m_type = type; }
    void setvisible(bool visible) { m_visible = visible; }
    ///@}
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
