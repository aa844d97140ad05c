#pragma once

#include "core/AIModel.h"

#include <QList>
#include <QWidget>

namespace varno {

/// A list of the models, of which one is selected.
class ModelList final : public QWidget {
    Q_OBJECT

public:
    explicit ModelList(QWidget* parent = nullptr);

    void setModel(AIModel model);

Q_SIGNALS:
    void modelPressed(varno::AIModel model);

private:
    class Choice;
    QList<Choice*> m_rows;
};

} // namespace varno
