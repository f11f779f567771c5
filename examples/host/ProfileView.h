#pragma once

#include <QtWidgets/QWidget>

class StartProfile;

/// The phases of starting as bars, one below the other, with their total.
class ProfileView : public QWidget
{
    Q_OBJECT

public:
    explicit ProfileView(const StartProfile &profile);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const StartProfile &m_profile;
};
