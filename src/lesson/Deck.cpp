#include "lesson/Deck.h"

#include "lesson/LessonText.h"

#include <QPointer>
#include <QRegularExpression>
#include <QUrl>
#include <QVector>

namespace Calyx {

namespace {

struct Picture
{
    QString name;
    QByteArray png;
    QString url;
};

// A picture in the reference itself, or the address of one on the web: nothing else is for other devices.
bool isPicture(const QString& reference)
{
    static const QRegularExpression dataUri(
        QStringLiteral("^data:image/[a-z0-9.+-]{1,20};base64,[A-Za-z0-9+/=]+$"));
    if (reference.startsWith(QLatin1String("data:")))
        return reference.size() <= 2 * Deck::LargestPicture && dataUri.match(reference).hasMatch();
    const QUrl url(reference, QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isWeb && !url.host().isEmpty();
}

} // namespace

struct Deck::Private
{
    QVector<Picture> cards;
    int current = 0;
};

Deck::Deck(QObject* parent) : QAbstractListModel(parent), d(std::make_unique<Private>()) {}

Deck::~Deck() = default;

bool Deck::add(const QString& name, const QByteArray& png)
{
    return !png.isEmpty() && png.size() <= Deck::LargestPicture && append(name, png, QString());
}

bool Deck::add(const QString& name, const QString& url)
{
    return isPicture(url) && append(name, QByteArray(), LessonText::asReference(url));
}

bool Deck::append(const QString& name, const QByteArray& png, const QString& url)
{
    const int row = int(d->cards.size());
    beginInsertRows({}, row, row);
    d->cards.append({LessonText::clean(name, LessonText::longestName), png, url});
    if (d->current == 0)
        d->current = 1;
    const QPointer<Deck> self(this); // a slot may delete the lesson
    endInsertRows();
    if (self)
        Q_EMIT changed();
    return true;
}

int Deck::current() const
{
    return d->current;
}

bool Deck::setCurrent(int number)
{
    if (number < 1 || number > d->cards.size())
        return false;
    if (number == d->current)
        return true;
    d->current = number;
    const QPointer<Deck> self(this);
    Q_EMIT dataChanged(index(0), index(int(d->cards.size()) - 1), {IsCurrentRole});
    if (self)
        Q_EMIT changed();
    return true;
}

QString Deck::name(int number) const
{
    return d->cards.value(number - 1).name;
}

QByteArray Deck::picture(int number) const
{
    return d->cards.value(number - 1).png;
}

QString Deck::url(int number) const
{
    return d->cards.value(number - 1).url;
}

void Deck::clear()
{
    beginResetModel();
    d->cards.clear();
    d->current = 0;
    const QPointer<Deck> self(this);
    endResetModel();
    if (self)
        Q_EMIT changed();
}

int Deck::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(d->cards.size());
}

QVariant Deck::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= d->cards.size())
        return QVariant();
    const Picture& card = d->cards.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return card.name;
    case PictureRole:
        return card.url.startsWith(QLatin1String("data:"))
                   ? QByteArray::fromBase64(card.url.section(QLatin1Char(','), 1).toLatin1())
                   : card.png;
    case UrlRole:
        return card.url;
    case IsCurrentRole:
        return index.row() + 1 == d->current;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> Deck::roleNames() const
{
    return {{NameRole, "name"}, {PictureRole, "picture"}, {UrlRole, "url"}, {IsCurrentRole, "isCurrent"}};
}

} // namespace Calyx
