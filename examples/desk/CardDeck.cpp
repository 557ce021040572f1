#include "CardDeck.h"

#include "Theme.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFrame>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>
#include <QtConcurrent>

namespace {

constexpr int pictureWidth = 236;
constexpr int pictureHeight = 168;

QString fileFilter()
{
    QStringList patterns;
    const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    for (const QByteArray& format : formats)
        patterns.append(QStringLiteral("*.") + QString::fromLatin1(format));
    return QStringLiteral("Pictures (%1)").arg(patterns.join(QLatin1Char(' ')));
}

QStringList filesIn(const QMimeData* data)
{
    QStringList files;
    const QList<QUrl> urls = data->urls();
    for (const QUrl& url : urls) {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    return files;
}

} // namespace

CardDeck::CardDeck()
{
    setAcceptDrops(true);
    setAccessibleName(QStringLiteral("Cards"));
    m_picture = Theme::caption(QString());
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setFixedSize(pictureWidth, pictureHeight);
    m_drop = new QFrame;
    m_drop->setObjectName(QStringLiteral("drop"));
    m_place = Theme::caption(QString());
    m_place->setWordWrap(false);
    m_add = Theme::button(QStringLiteral("&Add picture\u2026"),
                          QStringLiteral("Add a picture from a file; it can be dropped here as well"));
    m_previous = Theme::button(QStringLiteral("Pre&vious"), QStringLiteral("Go to the card before"));
    m_next = Theme::button(QStringLiteral("&Next"), QStringLiteral("Go to the card after"));
    m_show = Theme::button(QStringLiteral("&Show to learners"),
                           QStringLiteral("Show this card on the learners' devices"));
    layOut();
    connect(m_add, &QPushButton::clicked, this, &CardDeck::chooseFile);
    connect(m_previous, &QPushButton::clicked, this, &CardDeck::previous);
    connect(m_next, &QPushButton::clicked, this, &CardDeck::next);
    connect(m_show, &QPushButton::clicked, this, &CardDeck::showToLearners);
    refresh();
}

void CardDeck::layOut()
{
    auto* dropBox = new QVBoxLayout(m_drop);
    dropBox->setContentsMargins(4, 4, 4, 4);
    dropBox->addWidget(m_picture, 0, Qt::AlignCenter);
    auto* heading = new QHBoxLayout;
    heading->addWidget(Theme::heading(QStringLiteral("Cards"), 1.1), 1);
    heading->addWidget(m_place);
    auto* steps = new QHBoxLayout;
    steps->addWidget(m_previous, 1);
    steps->addWidget(m_next, 1);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->addLayout(heading);
    box->addWidget(m_drop);
    box->addLayout(steps);
    box->addWidget(m_add);
    box->addWidget(m_show);
}

void CardDeck::chooseFile()
{
    auto* dialog = new QFileDialog(this, QStringLiteral("Add a picture"), QString(), fileFilter());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::filesSelected, this, &CardDeck::addFiles);
    dialog->open();
}

void CardDeck::addFiles(const QStringList& paths)
{
    for (const QString& path : paths)
        readLater([path] { return Cards::fromFile(path); });
}

void CardDeck::addDataUri(const QString& name, const QString& url)
{
    readLater([name, url] {
        return Cards::fromData(name, QByteArray::fromBase64(url.section(QLatin1Char(','), 1).toLatin1()));
    });
}

void CardDeck::readLater(const std::function<Card()>& read)
{
    auto* watcher = new QFutureWatcher<Card>(this);
    connect(watcher, &QFutureWatcher<Card>::finished, this, [this, watcher] {
        watcher->deleteLater();
        --m_reading;
        add(watcher->result());
    });
    ++m_reading;
    refresh();
    watcher->setFuture(QtConcurrent::run(read));
}

void CardDeck::add(const Card& card)
{
    if (card.picture.isNull()) {
        refresh();
        Q_EMIT refused(card.name, card.fault);
        return;
    }
    m_cards.append(card);
    goTo(m_cards.size() - 1);
}

void CardDeck::goTo(int card)
{
    if (card < 0 || card >= m_cards.size())
        return;
    m_current = card;
    refresh();
    Q_EMIT changed();
}

void CardDeck::showToLearners()
{
    if (m_show->isEnabled())
        Q_EMIT cardToShow(m_cards.at(m_current).png);
}

void CardDeck::setWhyNoShow(const QString& reason)
{
    m_whyNoShow = reason;
    refresh();
}

void CardDeck::refresh()
{
    const QString none = QStringLiteral("Add a picture first.");
    if (m_cards.isEmpty()) {
        m_picture->setText(QLatin1String(m_reading > 0 ? "Reading the picture\u2026"
                                                       : "Drop a picture here,\nor add one from a file."));
    } else {
        m_picture->setPixmap(QPixmap::fromImage(m_cards.at(m_current).picture.scaled(
            pictureWidth, pictureHeight, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
        m_picture->setAccessibleName(QStringLiteral("Card ") + m_cards.at(m_current).name);
    }
    m_place->setText(m_cards.isEmpty() ? QString() : QStringLiteral("%1 of %2").arg(current()).arg(count()));
    Theme::allow(m_previous, m_cards.isEmpty() ? none
                             : m_current == 0  ? QStringLiteral("This is the first card.")
                                               : QString());
    Theme::allow(m_next, m_cards.isEmpty()                 ? none
                         : m_current == m_cards.size() - 1 ? QStringLiteral("This is the last card.")
                                                           : QString());
    Theme::allow(m_show, m_whyNoShow.isEmpty() && m_cards.isEmpty() ? none : m_whyNoShow);
}

void CardDeck::highlight(bool isOver)
{
    Theme::setLook(m_drop, "isOver", isOver);
}

void CardDeck::dragEnterEvent(QDragEnterEvent* event)
{
    if (filesIn(event->mimeData()).isEmpty())
        return;
    event->acceptProposedAction();
    highlight(true);
}

void CardDeck::dragLeaveEvent(QDragLeaveEvent*)
{
    highlight(false);
}

void CardDeck::dropEvent(QDropEvent* event)
{
    highlight(false);
    event->acceptProposedAction();
    addFiles(filesIn(event->mimeData()));
}
