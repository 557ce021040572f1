#include "CardDeck.h"

CardDeck::CardDeck(Classroom* classroom) : m_classroom(classroom)
{
    setAcceptDrops(true);
    m_list->setViewMode(QListView::IconMode);
    m_list->setMovement(QListView::Static);
    m_list->setIconSize(QSize(210, 140));
    m_list->setAccessibleName(tr("Cards"));
    auto* add = button(tr("&Add picture\u2026"), tr("Add a picture from a file"));
    arrange(this, QBoxLayout::TopToBottom,
            {m_list, new QLabel(tr("Pictures can be dropped here.")), add, m_show});
    connect(add, &QPushButton::clicked, this, [this] {
        const QByteArray formats = QImageReader::supportedImageFormats().join(" *.");
        const QString filter = tr("Pictures (*.%1)").arg(QLatin1String(formats));
        addFiles(QFileDialog::getOpenFileUrls(this, tr("Add a picture"), QUrl(), filter));
    });
    connect(m_show, &QPushButton::clicked, this, [this] {
        const QByteArray png = m_list->currentItem()->data(Qt::UserRole).toByteArray();
        m_classroom->tellChannel([=](PresenterCollab* channel) {
            Q_EMIT m_classroom->news(tr("Showing the card\u2026"));
            channel->setCardImage(png);
            channel->showImageCard(true);
            Q_EMIT m_classroom->news(tr("The learners have the card."));
        });
    });
    connect(m_list, &QListWidget::currentRowChanged, this, [this] {
        refresh(m_whyNoShow);
        tellRemote();
    });
}

void CardDeck::addFiles(const QList<QUrl>& urls)
{
    for (const QUrl& url : urls)
        add(url.fileName(), std::make_shared<QFile>(url.toLocalFile()));
}

// A large picture takes its time: not on the window's thread.
void CardDeck::add(const QString& name, const std::shared_ptr<QIODevice>& device)
{
    constexpr int longestSide = 1024; // more than devices show, and a second or two on the way
    m_classroom->tell([=](Classroom* classroom) {
        const bool isOpen = device->open(QIODevice::ReadOnly);
        QImageReader reader(device.get());
        reader.setDecideFormatFromContent(true);
        reader.setAutoTransform(true);
        const QSize size = reader.size();
        if (size.width() > longestSide || size.height() > longestSide)
            reader.setScaledSize(size.scaled(longestSide, longestSide, Qt::KeepAspectRatio));
        const QImage picture = reader.read();
        if (picture.isNull()) {
            Q_EMIT classroom->failed(tr("%1 cannot be a card").arg(name),
                                     isOpen ? reader.errorString() : device->errorString());
            return;
        }
        QBuffer png;
        png.open(QIODevice::WriteOnly);
        picture.save(&png, "PNG");
        QMetaObject::invokeMethod(this, [=, bytes = png.data()] {
            QIcon icon(QPixmap::fromImage(picture));
            icon.addPixmap(icon.pixmap(picture.size()), QIcon::Selected); // else it is tinted
            auto* card = new QListWidgetItem(icon, name, m_list);
            card->setData(Qt::UserRole, bytes);
            m_list->setCurrentItem(card);
        });
    });
}

void CardDeck::step(int cards)
{
    m_list->setCurrentRow(qBound(0, m_list->currentRow() + cards, m_list->count() - 1));
}

void CardDeck::tellRemote()
{
    const int card = m_list->currentRow() + 1;
    const int count = m_list->count();
    m_classroom->tellChannel(
        [=](PresenterCollab* channel) { channel->sendCurrentCardToRemote(card, count); });
}

void CardDeck::refresh(const QString& whyNoShow)
{
    m_whyNoShow = whyNoShow;
    const int count = m_list->count();
    setTitle(count == 0 ? tr("Cards") : tr("Cards (%1 of %2)").arg(m_list->currentRow() + 1).arg(count));
    allow(m_show, {whyNoShow, count == 0 ? tr("Add a picture first.") : QString()});
}

void CardDeck::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void CardDeck::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    addFiles(event->mimeData()->urls());
}
