#pragma once

#include "kit/PlainButton.h"
#include "kit/SymbolView.h"

#include <QLineEdit>
#include <QPixmap>

namespace varno {

/// The field that a search is typed into, with its frame and, around that, room for its shadow.
class SearchBox final : public QWidget {
    Q_OBJECT

public:
    /// How far the widget reaches beyond the frame on each side, in points.
    static constexpr int shadowRoom = 9;

    /// Of the frame, where there is room for it.
    static constexpr int mostWidth = 560;

    explicit SearchBox(QWidget* parent = nullptr);

    [[nodiscard]] QString query() const { return m_field.text(); }
    void setQuery(const QString& query) { m_field.setText(query); }
    /// Of the query, in points.
    void setTextSize(int size);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void queryChanged(const QString& query);
    void submitted();

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void takeColors();
    void paintShadow(QPainter& painter, const QRectF& frame);
    [[nodiscard]] QPixmap shadow(const QRectF& frame) const;

    SymbolView m_symbol;
    QLineEdit m_field;
    PlainButton m_clear;
    QPixmap m_shadow; ///< of the size that it had last
};

} // namespace varno
