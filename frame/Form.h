#pragma once

/**
 * The widgets of a page's form, set up when this member is constructed. With it as a page's first
 * member, the members behind it, the device handles above all, come to life after the widgets.
 */
template <typename Widgets>
class Form
{
public:
    template <typename Page>
    explicit Form(Page *page)
    {
        // Polished while it is empty, so that the look of its widgets is worked out when they first
        // show, not for every hidden page when the window does.
        page->ensurePolished();
        widgets.setupUi(page);
    }
    Form(const Form &) = delete;
    Form &operator=(const Form &) = delete;

    Widgets *operator->() { return &widgets; }
    const Widgets *operator->() const { return &widgets; }

private:
    Widgets widgets;
};
