// SPDX-License-Identifier: GPL-3.0-or-later
// Copyright 2026 The Ledgerly developers

#include "records.h"

Category::Category() : SNo(0) { }
Category::~Category() = default;

Mode::Mode() : SNo(0) { }
Mode::~Mode() = default;

Items::Items() : SNo(0), CategoryID(0), LastPrice(0.0f), UseFrequency(0) { }
Items::~Items() = default;

ItemSubstitutes::ItemSubstitutes() : SNo(0), ItemID(0), SubstituteID(0) { }
ItemSubstitutes::~ItemSubstitutes() = default;

HistoricLocation::HistoricLocation() : SNo(0), LocationLongitude(0.0f), LocationLatitude(0.0f) { }
HistoricLocation::~HistoricLocation() = default;

Entry::Entry()
    : SNo(0), CategoryID(0), Price(0.0f), EnableGeoLoc(false), GeoLocID(0), GeoLocLongit(0.0f), GeoLocLatit(0.0f),
      ItemID(0)
{
}
Entry::~Entry() = default;

PlaceSpending::PlaceSpending() : NumberOfEntries(0), Total(0.0f), Average(0.0f) { }
PlaceSpending::~PlaceSpending() = default;

CategorySpending::CategorySpending() : NumberOfDateTimes(0), Total(0.0f) { }
CategorySpending::~CategorySpending() = default;

RememberedPlaceSpending::RememberedPlaceSpending()
    : SNo(0), LocationLongitude(0.0f), LocationLatitude(0.0f), NumberOfEntries(0), Total(0.0f)
{
}
RememberedPlaceSpending::~RememberedPlaceSpending() = default;
