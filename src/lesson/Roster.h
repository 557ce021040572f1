#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/Learner.h>

#include <QAbstractListModel>
#include <QDateTime>
#include <QJsonArray>
#include <QStringList>

#include <memory>

namespace Calyx {

class Poll;

/// Who takes part: every device that has joined the lesson or has answered a poll, in the order of coming,
/// those that have left included. Rows are stable. Names are not unique, devices are.
///
/// Owned by its Lesson, and on its thread. Names come from outside: control characters are replaced by
/// blanks, 60 characters are kept; escape them where you show HTML.
class CALYXCLIENT_EXPORT Roster : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY changed)
    Q_PROPERTY(int presentCount READ presentCount NOTIFY changed)

public:
    /// The roles, with their names in QML. The last two are about Lesson::poll().
    enum Role {
        DeviceIdRole = Qt::UserRole + 1, ///< "deviceId"
        NameRole,                        ///< "name", the device id where there is none
        DeviceTypeRole,                  ///< "deviceType", as the service names it
        IsPresentRole,                   ///< "isPresent"
        HasAnsweredRole,                 ///< "hasAnswered": Lesson::poll()
        AnswerRole                       ///< "answer": its text
    };
    Q_ENUM(Role)

    ~Roster() override;

    /// How many are here.
    int presentCount() const;
    /// The most who were here at once.
    int mostPresent() const;
    /// Whether the device is here.
    Q_INVOKABLE bool isPresent(const QString& deviceId) const;
    /// Whether the device has ever been here.
    Q_INVOKABLE bool contains(const QString& deviceId) const;
    /// The learner's name; the device id when it has none.
    Q_INVOKABLE QString name(const QString& deviceId) const;
    /// The devices that are here, in the order of coming.
    Q_INVOKABLE QStringList present() const;
    /// The devices present that \p text names: by device id, else by the whole name, else by the beginning
    /// of either; case does not count in names.
    Q_INVOKABLE QStringList find(const QString& text) const;
    /// Everybody with the times of coming and going.
    QJsonArray toJson() const;

    ///@{
    /// As views want it.
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    ///@}

Q_SIGNALS:
    /// A device that was not here is.
    void joined(const QString& deviceId);
    /// A device that was here is not any more.
    void left(const QString& deviceId);
    /// Somebody has come or gone: once for all who came together.
    void changed();

private:
    friend class Lesson;
    friend class LessonJournal;
    friend struct LessonContent;
    friend struct LessonPrivate;
    explicit Roster(QObject* parent);
    bool join(const Learner& learner, const QDateTime& at = QDateTime::currentDateTime());
    bool see(const QString& deviceId);
    bool leave(const QString& deviceId, const QDateTime& at = QDateTime::currentDateTime());
    /// When it came or went last.
    QDateTime movedAt(const QString& deviceId) const;
    int rowOf(const QString& deviceId) const;
    void clear();
    /// tellAnswers() is still to be called.
    void setPoll(const Poll* poll);
    void tellAnswers();
    void flush();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Calyx
