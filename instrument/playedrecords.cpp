#include "instrument/playedrecords.h"

#include <functional>

namespace qv3 {
namespace {

template <typename Field>
bool differs(const std::optional<SampleRecord>& last, const SampleRecord& record, Field field) {
  return !last || std::invoke(field, *last) != std::invoke(field, record);
}

}  // namespace

void PlayedRecords::borrow() {
  const MeterState& state = m_core.state;
  const ProgramSettings& settings = m_core.settings;
  m_live = LiveValues{settings.KnobPosition, settings.FreezeEnable,
                      settings.DialType,     state.BdAccum,
                      state.BdTenths,        state.BdRunning,
                      state.BasePosition,    state.BaseText,
                      state.BdText,          m_core.measurement.base().recorded(),
                      state.NeedleTest};
  m_last.reset();
}

void PlayedRecords::borrowKnob() {
  borrow();
  m_live->knobAlone = true;
}

void PlayedRecords::giveBack() {
  if (!m_live) return;
  m_core.settings = liveSettings();
  m_core.state.NeedleTest = m_live->NeedleTest;
  if (!m_live->knobAlone) giveBackReadouts();
  m_live.reset();
}

void PlayedRecords::giveBackReadouts() {
  MeterState& state = m_core.state;
  state.BdAccum = m_live->BdAccum;
  state.BdTenths = m_live->BdTenths;
  state.BdRunning = m_live->BdRunning;
  state.BasePosition = m_live->BasePosition;
  state.BaseText = m_live->BaseText;
  state.BdText = m_live->BdText;
  m_core.measurement.base().setRecorded(m_live->recorded);
}

ProgramSettings PlayedRecords::liveSettings() const {
  ProgramSettings settings = m_core.settings;
  if (!m_live) return settings;
  settings.KnobPosition = m_live->KnobPosition;
  settings.FreezeEnable = m_live->FreezeEnable;
  settings.DialType = m_live->DialType;
  return settings;
}

void PlayedRecords::show(const SampleRecord& record) {
  m_core.state.Reading = record.reading();
  applyTag(record);
  applyReadouts(record);
  applyFlags(record);
  m_last = record;
  m_core.Update_Needle(record.NeedleShown);
  m_core.plotGraph();
}

void PlayedRecords::applyTag(const SampleRecord& record) {
  if (record.Mark != 'T') return;
  if (m_last && m_last->Mark == 'T' && m_last->TagNumber() == record.TagNumber()) return;
  m_core.state.TagCount = record.TagNumber();
  m_core.display.showTagCount(m_core.state.TagCount);
}

void PlayedRecords::applyReadouts(const SampleRecord& record) {
  MeterState& state = m_core.state;
  if (differs(m_last, record, &SampleRecord::BasePosition)) {
    state.BasePosition = record.BasePosition;
    state.BaseText = baseText(record.BasePosition);
    m_core.display.Update_BaseDisplay(state.BaseText);
  }
  if (differs(m_last, record, &SampleRecord::BdTenths)) {
    state.BdTenths = record.BdTenths;
    state.BdText = bdText(record.BdTenths);
    m_core.Update_BdDisplay();
  }
  if (differs(m_last, record, &SampleRecord::KnobPosition)) {
    m_core.settings.KnobPosition = record.KnobPosition;
    m_core.display.Update_SensKnob(record.KnobPosition);
  }
}

void PlayedRecords::applyFlags(const SampleRecord& record) {
  if (differs(m_last, record, &SampleRecord::lamp)) applyLamp(record.lamp());
  m_core.state.Frozen = record.frozen();
  if (differs(m_last, record, &SampleRecord::bdRunning)) {
    m_core.state.BdRunning = record.bdRunning();
    m_core.Update_BdDisplay();
  }
  if (differs(m_last, record, &SampleRecord::dialType) &&
      m_core.settings.DialType != record.dialType()) {
    m_core.settings.DialType = record.dialType();
    m_core.Draw_Panel();
    m_core.display.refreshControls();
  }
}

void PlayedRecords::applyLamp(Lamp lamp) {
  const ProgramSettings& settings = m_core.settings;
  m_core.state.BodyMotion = lamp == Lamp::BodyMotion;
  switch (lamp) {
    case Lamp::Off:
      m_core.lampOff();
      break;
    case Lamp::Set:
      m_core.Update_LED(settings.LED_Set_Color);
      break;
    case Lamp::BodyMotion:
      m_core.Update_LED(settings.LED_BM_Color);
      break;
    case Lamp::Lag:
      m_core.Update_LED(settings.LED_Lag_Color);
      break;
  }
}

}  // namespace qv3
