#pragma once

#include "reader/ListRest.h"
#include "reader/WrappingHStack.h"

#include <QStringList>

namespace varno {

/// The related topics as links in rows.
class RelatedTopics final : public QWidget {
    Q_OBJECT

public:
    explicit RelatedTopics(QWidget* parent = nullptr);

    /// Shows the topics, up to `topicsLimit`.
    void setTopics(const QStringList& topics);

Q_SIGNALS:
    void topicPressed(const QString& topic);

private:
    QWidget* makeLink(const QString& topic);

    QStringList m_topics; ///< those on show
    ThemedText m_heading;
    WrappingHStack<QString> m_links;
    ListRest m_rest;
};

} // namespace varno
