#include "lesson/RosterFilter.h"

namespace Calyx {

RosterFilter::RosterFilter(QObject* parent) : RosterFilter(nullptr, parent) {}

RosterFilter::RosterFilter(Roster* roster, QObject* parent) : QSortFilterProxyModel(parent)
{
    setSortCaseSensitivity(Qt::CaseInsensitive);
    setSortRole(Roster::NameRole);
    sort(0);
    setSourceModel(roster);
}

Roster* RosterFilter::roster() const
{
    return qobject_cast<Roster*>(sourceModel());
}

void RosterFilter::setRoster(Roster* shown)
{
    if (shown == roster())
        return;
    setSourceModel(shown);
    Q_EMIT rosterChanged();
}

void RosterFilter::setOnlyMissing(bool onlyMissing)
{
    if (m_isOnlyMissing == onlyMissing)
        return;
    m_isOnlyMissing = onlyMissing;
    invalidateFilter();
    Q_EMIT onlyMissingChanged();
}

QVariant RosterFilter::data(const QModelIndex& index, int role) const
{
    if (role == Qt::CheckStateRole && index.isValid())
        return index.data(Roster::HasAnsweredRole).toBool() ? Qt::Checked : Qt::Unchecked;
    return QSortFilterProxyModel::data(index, role);
}

bool RosterFilter::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    const QModelIndex index = sourceModel()->index(row, 0, parent);
    return index.data(Roster::IsPresentRole).toBool() &&
           !(m_isOnlyMissing && index.data(Roster::HasAnsweredRole).toBool());
}

} // namespace Calyx
