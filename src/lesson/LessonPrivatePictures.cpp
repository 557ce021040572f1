#include "lesson/LessonPrivate.h"

#include "collab/PresenterCollab.h"

namespace Calyx {

namespace {

constexpr int largestInline = 64 * 1024;

} // namespace

bool LessonPrivate::isTooLarge(const QByteArray& png)
{
    if (png.size() > Deck::LargestPicture)
        fail(LessonError::make(LessonError::TooLarge));
    return png.size() > Deck::LargestPicture;
}

// Small ones travel in the message; others are stored at the service, from which devices load them. Where
// that fails, they travel all the same.
void LessonPrivate::withPicture(const QByteArray& png,
                                const std::function<void(const QByteArray& png, const QString& url)>& then)
{
    if (png.size() <= largestInline) {
        then(png, QString());
        return;
    }
    if (uploaded.contains(png)) {
        then(QByteArray(), uploaded.value(png));
        return;
    }
    const int ticketOfUpload = ++lastTicket;
    uploads.insert(ticketOfUpload, {png, then});
    worker->tell([png, ticketOfUpload](LessonWorker* at) { at->upload(ticketOfUpload, png); });
}

void LessonPrivate::onUploaded(int ticketOfUpload, const QString& url)
{
    if (!uploads.contains(ticketOfUpload)) // cancelled
        return;
    const QPointer<Lesson> self(q);
    const Upload upload = uploads.take(ticketOfUpload);
    if (!url.isEmpty())
        uploaded.insert(upload.png, url);
    upload.then(url.isEmpty() ? upload.png : QByteArray(), url);
    if (self)
        tellBusy();
}

void LessonPrivate::show(const QByteArray& png, const QString& url, int number)
{
    if (!mayAsk({}, QString()) || isTooLarge(png))
        return;
    const QPointer<Lesson> self(q);
    withPicture(
        png, [this, url, number, serial = ++cardSerial](const QByteArray& bytes, const QString& uploadedUrl) {
            if (serial != cardSerial) // something else has been shown since
                return;
            content.cardPng = bytes;
            content.cardUrl = uploadedUrl.isEmpty() ? url : uploadedUrl;
            send([bytes, cardUrl = content.cardUrl](PresenterCollab* collab) {
                LessonMessages::sendCard(collab, QString(), bytes, cardUrl);
            });
            Q_EMIT q->cardShown(number);
        });
    if (self)
        tellBusy();
}

} // namespace Calyx
