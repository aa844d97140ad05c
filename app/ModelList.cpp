#include "app/ModelList.h"

#include "app/RowButton.h"
#include "kit/Layout.h"
#include "kit/RoundedShape.h"
#include "kit/ThemedText.h"

#include <QPainter>

namespace varno {
namespace {

constexpr double radius = 6; // of the corners

} // namespace

class ModelList::Choice final : public RowButton {
public:
    explicit Choice(AIModel rowModel)
        : RowButton(details(rowModel).displayName)
        , model(rowModel)
        , m_name(details(rowModel).displayName)
        , m_description(details(rowModel).description)
    {
        setContent(
            column({.spacing = 2, .horizontal = 10, .vertical = 6}, {m_name, m_description}));
        setAccessibleDescription(details(rowModel).description);
        setCheckable(true);
        setAutoExclusive(true);
        setSelected(false);
    }

    void setSelected(bool selected)
    {
        const ColorRole role = selected ? ColorRole::accent : ColorRole::text;
        setChecked(selected);
        setFocusPolicy(selected ? Qt::TabFocus : Qt::NoFocus); // arrows choose the others
        m_name.setTextStyle({.size = 12, .role = role});
        m_description.setTextStyle({.size = 10, .role = role, .opacity = selected ? 0.7 : 0.4});
    }

    const AIModel model;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        if (!isChecked())
            return RowButton::paintEvent(event);
        QPainter painter(this);
        fillRounded(painter, rect(), radius, themeColor(palette(), ColorRole::accent, 0.1));
        if (hasFocus())
            outlineFocus(painter, rect(), radius, palette());
    }

private:
    ThemedText m_name;
    ThemedText m_description;
};

ModelList::ModelList(QWidget* parent)
    : QWidget(parent)
{
    QBoxLayout* rows = column({.spacing = 2}, {});
    for (const auto& [model, rawValue] : RawValues<AIModel>::cases) {
        auto* row = new Choice(model);
        rows->addWidget(row);
        m_rows.append(row);
        connect(row, &RowButton::clicked, this,
                [this, pressed = model] { Q_EMIT modelPressed(pressed); });
    }
    setLayout(rows);
    setAccessibleName(tr("Model"));
}

void ModelList::setModel(AIModel model)
{
    const bool hasFocus = isAncestorOf(focusWidget());
    for (Choice* row : m_rows) {
        row->setSelected(row->model == model);
        if (hasFocus && row->isChecked())
            row->setFocus(Qt::TabFocusReason);
    }
}

} // namespace varno
