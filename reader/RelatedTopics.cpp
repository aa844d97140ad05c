#include "reader/RelatedTopics.h"

#include "kit/Accessibility.h"
#include "kit/Layout.h"
#include "kit/PlainButton.h"
#include "kit/TextCuts.h"

#include <utility>

namespace varno {
namespace {

const ButtonStyle linkStyle{
    .text = {.size = 13, .role = ColorRole::accent, .limit = lineLimit},
    .horizontal = 12,
    .radius = 15,
    .outline = Ink{.role = ColorRole::border},
    .fill = Ink{.role = ColorRole::surface},
    .overflow = Overflow::elide,
};

} // namespace

RelatedTopics::RelatedTopics(QWidget* parent)
    : QWidget(parent)
    , m_heading(tr("SEE ALSO"), {.size = 9,
                                 .weight = QFont::DemiBold,
                                 .design = FontDesign::serif,
                                 .tracking = 2,
                                 .opacity = 0.5})
    , m_links([this](const QString& topic) { return makeLink(topic); })
{
    setLayout(column({.spacing = 12}, {m_heading, m_links, m_rest}));
    setAccessibleName(tr("See also"));
    m_heading.setAccessibleName(accessibleName());
    setAccessibleRole(m_heading, QAccessible::Heading, 2);
    m_links.setAccessibleName(accessibleName());
    setAccessibleRole(m_links, QAccessible::List);
}

void RelatedTopics::setTopics(const QStringList& topics)
{
    const qsizetype count = shownCount(topics, topicsLimit, lineLimit);
    m_rest.setCount(topics.size() - count);
    if (std::exchange(m_topics, topics.first(count)) != m_topics)
        m_links.setItems(m_topics);
}

QWidget* RelatedTopics::makeLink(const QString& topic)
{
    auto* link = new PlainButton(topic, linkStyle);
    setAccessibleRole(*link, QAccessible::Link);
    link->setFixedHeight(WrappingLengths().rowHeight);
    connect(link, &PlainButton::clicked, this, [this, topic] { Q_EMIT topicPressed(topic); });
    return link;
}

} // namespace varno
