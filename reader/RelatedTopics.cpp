#include "reader/RelatedTopics.h"

#include "kit/Layout.h"
#include "kit/PlainButton.h"

namespace varno {
namespace {

const ButtonStyle linkStyle{
    .text = {.size = 13, .role = ColorRole::accent},
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
    setLayout(column({.spacing = 12}, {m_heading, m_links}));
    setAccessibleName(tr("See also"));
}

void RelatedTopics::setTopics(const QStringList& topics)
{
    if (topics == m_topics)
        return;
    m_topics = topics;
    m_links.setItems(topics);
}

QWidget* RelatedTopics::makeLink(const QString& topic)
{
    auto* link = new PlainButton(topic, linkStyle);
    link->setFixedHeight(WrappingLengths().rowHeight);
    connect(link, &PlainButton::clicked, this, [this, topic] { emit topicPressed(topic); });
    return link;
}

} // namespace varno
