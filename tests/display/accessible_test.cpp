#include <gtest/gtest.h>

#include <QAccessible>

#include "display/accessiblevalue.h"

namespace qv3 {
namespace {

class Lamp : public ValueWidget {
 public:
  QString accessibleValue() const override {
    ++m_composed;
    return m_on ? "on" : "off";
  }
  void turn(bool on) {
    m_on = on;
    tellAccessibleValue();
  }
  int composed() const { return m_composed; }

 private:
  bool m_on = false;
  mutable int m_composed = 0;
};

TEST(AccessibleValue, CostsNothingWhileNobodyListens) {
  Lamp lamp;
  lamp.turn(true);
  EXPECT_EQ(lamp.composed(), 0);
}

TEST(AccessibleValue, WordsAreValueAndDescription) {
  Lamp lamp;
  lamp.setAccessibleName("Alert lamp");
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&lamp);
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(face->text(QAccessible::Name), "Alert lamp");
  EXPECT_EQ(face->text(QAccessible::Value), "off");
  EXPECT_EQ(face->text(QAccessible::Description), "off");
  lamp.setAccessibleDescription("Tells SET from body motion");
  EXPECT_EQ(face->text(QAccessible::Description), "Tells SET from body motion");
}

}  // namespace
}  // namespace qv3
