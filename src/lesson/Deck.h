#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QAbstractListModel>
#include <QByteArray>

#include <memory>

namespace Calyx {

/// The pictures of the lesson, which are shown to the learners as cards one by one: by the host
/// (Lesson::showCard()) or by the remote control, which can add some, too.
///
/// Cards are numbered from 1. Adding the first makes it the current one. Owned by its Lesson, and on its
/// thread.
class CALYXCLIENT_EXPORT Deck : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY changed)
    Q_PROPERTY(int current READ current WRITE setCurrent NOTIFY changed)

public:
    /// The roles, with their names in QML.
    enum Role {
        NameRole = Qt::UserRole + 1, ///< "name"
        PictureRole,                 ///< "picture": its bytes, those of a data URI included
        UrlRole,                     ///< "url"
        IsCurrentRole                ///< "isCurrent"
    };
    Q_ENUM(Role)

    /// How large a picture may be, in bytes.
    static constexpr int LargestPicture = 16 * 1024 * 1024;

    ~Deck() override;

    /// Adds a card with a PNG picture at the end. False when \p png is empty or larger than LargestPicture.
    bool add(const QString& name, const QByteArray& png);
    /// Adds a card whose picture devices load from \p url: an address on the web, or a data URI of a picture.
    /// False for anything else.
    Q_INVOKABLE bool add(const QString& name, const QString& url);
    /// The card that the teacher is at; 0 without cards.
    int current() const;
    /// Goes to the card with this \p number; beyond the first and the last it stays where it is, and the
    /// result is false. Shows nothing.
    bool setCurrent(int number);
    /// The name of a card; null for a number that there is not.
    Q_INVOKABLE QString name(int number) const;
    /// The picture's bytes; null for a card with an address.
    QByteArray picture(int number) const;
    /// The picture's address; null for a card with bytes.
    QString url(int number) const;
    /// Removes all cards.
    Q_INVOKABLE void clear();

    ///@{
    /// As views want it.
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    ///@}

Q_SIGNALS:
    /// Cards were added or removed, or another one is current.
    void changed();

private:
    friend struct LessonPrivate;
    explicit Deck(QObject* parent);
    bool append(const QString& name, const QByteArray& png, const QString& url);

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Calyx
