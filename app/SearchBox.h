#pragma once

#include "kit/PlainButton.h"
#include "kit/SymbolView.h"
#include "kit/TextField.h"

#include <QPixmap>

namespace varno {

/// The search field with its frame, and room for the shadow around it.
class SearchBox final : public QWidget {
    Q_OBJECT

public:
    /// The margin around the frame on each side, in points.
    static constexpr int shadowRoom = 9;

    /// The width of the frame, in points, where there is room for it.
    static constexpr int mostWidth = 560;

    explicit SearchBox(QWidget* parent = nullptr);

    [[nodiscard]] QString query() const { return m_field.text(); }
    void setQuery(const QString& query) { m_field.setText(query); }
    /// Sets the text size of the query, in points.
    void setTextSize(int size);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void queryChanged(const QString& query);
    void queryTyped(const QString& query); ///< changed by the user
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
    TextField m_field;
    PlainButton m_clear;
    QPixmap m_shadow; ///< of the size that it had last
};

} // namespace varno
